# Makes of the installed files what Debian expects in a package. Run by cpack before it packs them.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr)
set(documents ${root}/share/doc/quillbrook)

# compress(<text> <file>): without a name and a time in it, so that the same text gives the same bytes.
function(compress text file)
    execute_process(COMMAND gzip -9nc ${text} OUTPUT_FILE ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

compress(${CPACK_QUILLBROOK_DEBIAN}/changelog ${documents}/changelog.Debian.gz)
compress(${documents}/CHANGELOG.md ${documents}/changelog.gz)
file(REMOVE ${documents}/CHANGELOG.md)

file(MAKE_DIRECTORY ${root}/share/lintian/overrides)
file(COPY_FILE ${CPACK_QUILLBROOK_DEBIAN}/lintian-overrides ${root}/share/lintian/overrides/quillbrook)

execute_process(COMMAND strip --remove-section=.comment --remove-section=.note ${root}/bin/quillbrook
    COMMAND_ERROR_IS_FATAL ANY)

# Whatever the umask of the one who packs.
file(CHMOD_RECURSE ${root}
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ
    DIRECTORY_PERMISSIONS
        OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
file(CHMOD ${root} ${root}/bin/quillbrook
    PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
