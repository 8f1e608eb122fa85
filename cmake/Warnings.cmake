# The warnings that our own code is held to; third-party headers are included as SYSTEM. A designated initializer may leave
# fields out, which then have their defaults; that is how we write values with many fields.
option(BREVANTA_WARNINGS_ARE_ERRORS "Stop at a warning, with the compilers that this has been tried with" OFF)
add_library(brevanta_warnings INTERFACE)
target_compile_options(brevanta_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
    -Wformat=2 -Wimplicit-fallthrough -Wno-missing-field-initializers)

# A newer compiler has warnings that nobody here has seen yet, and a newer header deprecates what an older system needs:
# neither may stop a build.
if(BREVANTA_WARNINGS_ARE_ERRORS)
    if((CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 15)
        OR (CMAKE_CXX_COMPILER_ID MATCHES Clang AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 20))
        target_compile_options(brevanta_warnings INTERFACE -Werror -Wno-error=deprecated-declarations)
    else()
        message(STATUS "Warnings of ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION} stop nothing: it is new here")
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
