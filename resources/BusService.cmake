# Writes the file that lets the session bus start the program. It is included when the build is configured and again on
# installation, because the prefix may have changed by then.
cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_PREFIX OUTPUT_VARIABLE prefix)
cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_BINDIR BASE_DIRECTORY ${prefix} NORMALIZE OUTPUT_VARIABLE folder)
set(program ${folder}/usage-meter)
# The bus splits the line into words like a shell.
if(program MATCHES "[^A-Za-z0-9/._+-]")
    string(REPLACE "'" "'\"'\"'" program "${program}")
    set(program "'${program}'")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/desktop/bus.service.in ${bus_service} @ONLY)
