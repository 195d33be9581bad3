# One interface target carries the warnings and the instrumentation of the chosen preset; every target of the
# project links it.
add_library(vantor_options INTERFACE)
target_compile_options(vantor_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wimplicit-fallthrough -Werror)
target_compile_definitions(vantor_options INTERFACE QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS)

if(VANTOR_SANITIZERS)
    target_compile_options(vantor_options INTERFACE
        -fsanitize=${VANTOR_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(vantor_options INTERFACE -fsanitize=${VANTOR_SANITIZERS})
endif()
if(VANTOR_COVERAGE)
    target_compile_options(vantor_options INTERFACE --coverage)
    target_link_options(vantor_options INTERFACE --coverage)
endif()
