# Lints the QML files of a module whenever one of them, or the types they may name, has changed. A finding fails
# the build, also those that qmllint by itself only mentions.
function(quillbrook_lint_qml target)
    get_target_property(files ${target} QT_QML_LINT_FILES)
    get_target_property(types ${target} QT_QML_MODULE_TYPEINFO)
    get_target_property(types_folder ${target} QT_QML_MODULE_OUTPUT_DIRECTORY)
    set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${target}_qmllint.stamp)
    add_custom_command(
        OUTPUT ${stamp}
        COMMAND $<TARGET_FILE:Qt6::qmllint> --bare --unused-imports warning --multiline-strings warning
            -I ${types_folder}/.. -I ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_QML} ${files}
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
        DEPENDS ${files} ${types_folder}/${types}
        COMMENT "Linting the QML files of ${target}"
        VERBATIM)
    add_custom_target(${target}_lint ALL DEPENDS ${stamp})
    add_dependencies(${target}_lint all_qmltyperegistrations)
endfunction()
