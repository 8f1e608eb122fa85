# BREVANTA_SANITIZERS is a list for -fsanitize=, such as "address;undefined" or "thread".
set(BREVANTA_SANITIZERS "" CACHE STRING "Sanitizers to build with")
if(BREVANTA_SANITIZERS)
    list(JOIN BREVANTA_SANITIZERS "," BREVANTA_SANITIZER_LIST)
    add_compile_options(-fsanitize=${BREVANTA_SANITIZER_LIST} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${BREVANTA_SANITIZER_LIST})
endif()
