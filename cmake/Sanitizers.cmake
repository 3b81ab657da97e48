option(NORVANE_SANITIZE "Address and undefined-behaviour sanitizers" OFF)
if(NORVANE_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
