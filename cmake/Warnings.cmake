# Warnings are errors everywhere in our own code; third-party headers are included as SYSTEM. A designated initializer
# may leave fields out, which then have their defaults; that is how we write values with many fields.
add_library(brevanta_warnings INTERFACE)
target_compile_options(brevanta_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
    -Wformat=2 -Wimplicit-fallthrough -Wno-missing-field-initializers -Werror)
# Where several sources are compiled as one, a name of one file may shadow another file's, which nobody ever reads as one.
if(CMAKE_UNITY_BUILD)
    target_compile_options(brevanta_warnings INTERFACE -Wno-shadow)
endif()
