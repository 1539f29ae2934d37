# SPDX-License-Identifier: MIT
# Stages the program with its own bundle, for use with the stand-in provider:
#   cmake -DBUILD=build/default -DSTAGE=build/default/demo -DHOME=build/default/demo/home -DHOST=localhost:1234
#         -DAUTHORITY=authority.pem -P demo/StageBundle.cmake
# The settings in HOME are written only once, so that the user's changes in the demo are kept.
cmake_minimum_required(VERSION 3.25)

set(identifier net.tarvo.UsageMeter.demo)
set(bundle ${STAGE}/share/usage-meter)

function(set_text plist key text)
    if(NOT ${plist} MATCHES "<key>${key}</key>[ \t\r\n]*<string>[^<]*</string>")
        message(FATAL_ERROR "Info.plist has no text for ${key}")
    endif()
    string(REPLACE "${CMAKE_MATCH_0}" "<key>${key}</key>\n  <string>${text}</string>" changed "${${plist}}")
    set(${plist} "${changed}" PARENT_SCOPE)
endfunction()

# A link would not work, since the program looks for its bundle and its helper next to its real location.
file(REMOVE_RECURSE ${STAGE}/bin ${STAGE}/lib ${STAGE}/share)
file(COPY ${BUILD}/bin/usage-meter DESTINATION ${STAGE}/bin)
file(COPY ${BUILD}/lib/usage-meter DESTINATION ${STAGE}/lib)
file(COPY ${BUILD}/share/icons ${BUILD}/share/usage-meter DESTINATION ${STAGE}/share)
configure_file(${AUTHORITY} ${bundle}/authority.pem COPYONLY)

file(READ ${bundle}/Info.plist info)
set_text(info CFBundleIdentifier ${identifier})
set_text(info ProviderHost ${HOST})
string(REGEX REPLACE "</dict>[ \t\r\n]*</plist>"
    "  <key>ProviderCertificateAuthority</key>\n  <string>authority.pem</string>\n</dict>\n</plist>" info "${info}")
file(WRITE ${bundle}/Info.plist "${info}")

set(settings ${HOME}/config/${identifier}/preferences.plist)
if(NOT EXISTS ${settings})
    file(COPY ${CMAKE_CURRENT_LIST_DIR}/preferences.plist DESTINATION ${HOME}/config/${identifier}
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE
    )
endif()
