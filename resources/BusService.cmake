# Writes the file by which the session bus starts the program. It is read in when the build is configured, and again when
# it is installed, for the prefix may be another by then.
cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_PREFIX OUTPUT_VARIABLE prefix)
cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_BINDIR BASE_DIRECTORY ${prefix} NORMALIZE OUTPUT_VARIABLE folder)
set(program ${folder}/usage-meter)
# The bus splits the line into words as a shell does.
if(program MATCHES "[^A-Za-z0-9/._+-]")
    string(REPLACE "'" "'\"'\"'" program "${program}")
    set(program "'${program}'")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/desktop/bus.service.in ${bus_service} @ONLY)
