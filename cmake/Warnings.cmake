# The warnings that our own code is held to; third-party headers are included as SYSTEM. A designated initializer may leave
# fields out, which then have their defaults; that is how we write values with many fields.
option(BREVANTA_WARNINGS_ARE_ERRORS "Stop at a warning, with a compiler that this has been tried with" OFF)
add_library(brevanta_warnings INTERFACE)
target_compile_options(brevanta_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
    -Wformat=2 -Wimplicit-fallthrough -Wno-missing-field-initializers)

# Other compilers have warnings that nobody here has seen, other systems' headers have other types, and newer ones deprecate
# what an older system needs: none of that may stop a build. These are the compilers of Debian 12 and 13.
if(BREVANTA_WARNINGS_ARE_ERRORS)
    string(REGEX MATCH "^[0-9]+" compiler "${CMAKE_CXX_COMPILER_VERSION}")
    if("${CMAKE_CXX_COMPILER_ID} ${compiler}" MATCHES "^(GNU 12|GNU 14|Clang 19)$")
        target_compile_options(brevanta_warnings INTERFACE -Werror -Wno-error=deprecated-declarations)
    else()
        message(STATUS "Warnings of ${CMAKE_CXX_COMPILER_ID} ${compiler} stop nothing: it has not been tried")
    endif()
endif()

# Where several sources are compiled as one, a name of one file may shadow another file's, which nobody ever reads as one.
if(CMAKE_UNITY_BUILD)
    target_compile_options(brevanta_warnings INTERFACE -Wno-shadow)
endif()
# At -O3 it warns falsely of a text put before another: https://gcc.gnu.org/bugzilla/show_bug.cgi?id=105651
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(brevanta_warnings INTERFACE $<$<CONFIG:Release>:-Wno-restrict>)
endif()
