# The layout of an installation, and of the build folder, which mirrors it.
include(GNUInstallDirs)

# The program finds its parts by paths relative to its own folder, so that an installation can be moved as a whole.
file(RELATIVE_PATH USAGE_METER_BUNDLE_FROM_PROGRAM
    ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_DATADIR}/usage-meter
)
file(RELATIVE_PATH USAGE_METER_PARTS_FROM_PROGRAM
    ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR}/usage-meter
)

# The build folder replaces the prefix, or the root if one of the folders is an absolute path.
set(full "")
foreach(folder BINDIR DATADIR LIBDIR)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
        set(full FULL_)
    endif()
endforeach()
set(USAGE_METER_BUILT_BUNDLE ${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_${full}DATADIR}/usage-meter)
set(USAGE_METER_BUILT_PARTS ${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_${full}LIBDIR}/usage-meter)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_${full}BINDIR})

# Marks a target as a helper program or as a library that is loaded at run time.
function(add_as_part target)
    set_target_properties(${target} PROPERTIES
        PREFIX ""
        CXX_VISIBILITY_PRESET hidden
        LIBRARY_OUTPUT_DIRECTORY ${USAGE_METER_BUILT_PARTS}
        RUNTIME_OUTPUT_DIRECTORY ${USAGE_METER_BUILT_PARTS}
    )
    target_link_libraries(${target} PRIVATE usage_meter_warnings)
    install(TARGETS ${target} DESTINATION ${CMAKE_INSTALL_LIBDIR}/usage-meter)
endfunction()
