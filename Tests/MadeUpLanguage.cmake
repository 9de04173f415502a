# A made-up language: every text longer and accented, so that what is cut, put together from pieces or left out is seen.
# It lies below QUILLBROOK_MADE_UP_DATA as translations do in a folder of data.
set(QUILLBROOK_MADE_UP_DATA ${CMAKE_CURRENT_BINARY_DIR}/EndToEnd/helpers)
set(made_up_language ${QUILLBROOK_MADE_UP_DATA}/quillbrook/translations/quillbrook_eo.qm)
set(made_up_source ${CMAKE_CURRENT_BINARY_DIR}/quillbrook_eo.ts)
add_custom_command(
    OUTPUT ${made_up_language}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${QUILLBROOK_MADE_UP_DATA}/quillbrook/translations
    COMMAND ${QUILLBROOK_PYTHON} -B ${CMAKE_CURRENT_SOURCE_DIR}/Support/made_up_language.py
        ${QUILLBROOK_TRANSLATION_TEMPLATE} ${made_up_source}
    COMMAND ${QUILLBROOK_LRELEASE} -silent ${made_up_source} -qm ${made_up_language}
    DEPENDS ${QUILLBROOK_TRANSLATION_TEMPLATE} translation_template Support/made_up_language.py
    COMMENT "Making up a language"
    VERBATIM)
add_custom_target(made_up_language ALL DEPENDS ${made_up_language})
