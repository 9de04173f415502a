# Sanitizers apply to every target of the build tree, so that all of it is instrumented alike.
if(QUILLBROOK_SANITIZERS)
    add_compile_options(-fsanitize=${QUILLBROOK_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${QUILLBROOK_SANITIZERS})
endif()
