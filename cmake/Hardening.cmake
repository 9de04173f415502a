# What Debian asks of its programs: bounds of buffers and the stack are checked where the compiler can tell them, and
# what the linker has resolved can't be written over. For the optimised build of what is installed; not with sanitizers,
# which look at the same places themselves.
function(quillbrook_hardening target)
    if(NOT QUILLBROOK_SANITIZERS)
        target_compile_options(${target} PRIVATE "$<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2;-fstack-protector-strong>")
        target_link_options(${target} PRIVATE "$<$<CONFIG:Release>:-Wl,-z,relro,-z,now>")
    endif()
endfunction()
