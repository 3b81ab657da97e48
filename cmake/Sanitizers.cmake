option(NORVANE_SANITIZE "Address and undefined-behaviour sanitizers" OFF)
if(NORVANE_SANITIZE)
    # Without vptr: its check reads memory through a pipe, which fails where a test has used up the
    # file descriptors on purpose.
    add_compile_options(-fsanitize=address,undefined -fno-sanitize=vptr
        -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
