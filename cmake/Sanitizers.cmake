# -DLARKSPIRE_SANITIZE=address,undefined or =thread builds everything with those sanitizers, the framework included.
set (LARKSPIRE_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them")

if (LARKSPIRE_SANITIZE)
    add_compile_options (-fsanitize=${LARKSPIRE_SANITIZE} -fno-omit-frame-pointer -g)
    add_link_options (-fsanitize=${LARKSPIRE_SANITIZE})

    if (LARKSPIRE_SANITIZE MATCHES "undefined")
        # The framework's casts of its own records are no faults of ours.
        add_compile_options (-fno-sanitize=vptr,alignment -fno-sanitize-recover=undefined)
    endif ()
endif ()
