# The program's identity. A build for another provider sets these variables and shares only the names of its programs
# with this one.
set(USAGE_METER_PROVIDER_HOST tarvo.example
    CACHE STRING "The provider's host, without \"www\": name or name:port"
)
set(USAGE_METER_PRODUCT_NAME "Usage Meter"
    CACHE STRING "What users call the program"
)
set(USAGE_METER_IDENTIFIER net.tarvo.UsageMeter
    CACHE STRING "What names the settings, the cache, the bus name and the desktop's files: a reversed domain name"
)
set(USAGE_METER_HOMEPAGE "https://www.${USAGE_METER_PROVIDER_HOST}/usage-meter"
    CACHE STRING "The page about the program, which has the pictures of docs/gallery beneath it"
)

function(require_form variable pattern form)
    if(NOT "${${variable}}" MATCHES "^${pattern}$")
        message(FATAL_ERROR "${variable} is \"${${variable}}\", but has to be ${form}")
    endif()
endfunction()

# These values are inserted into property lists, desktop entries and URLs without escaping.
require_form(USAGE_METER_PROVIDER_HOST "[A-Za-z0-9.-]+(:[0-9]+)?" "a host, or host:port")
require_form(USAGE_METER_PRODUCT_NAME "[^][\\\\&<>%@;\"'\r\n\t]+" "a text without &, <, >, %, @, ;, quotes, brackets or backslashes")
require_form(USAGE_METER_IDENTIFIER "[A-Za-z_][A-Za-z0-9_]*(\\.[A-Za-z_][A-Za-z0-9_]*)+" "a reversed domain name")
require_form(USAGE_METER_HOMEPAGE "https?://[^][\\\\&<> @\"'\r\n\t]+" "an http or https address")
