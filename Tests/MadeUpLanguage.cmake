# A made-up language: every text longer and accented, so that what is cut, put together from pieces or left out is seen.
# The gallery's own texts are in it too. It lies below QUILLBROOK_MADE_UP_DATA as translations do in a folder of data.
set(QUILLBROOK_MADE_UP_DATA ${CMAKE_CURRENT_BINARY_DIR}/EndToEnd/helpers)
set(QUILLBROOK_MADE_UP_LANGUAGE ${QUILLBROOK_MADE_UP_DATA}/quillbrook/translations/quillbrook_eo.qm)
set(gallery ${CMAKE_CURRENT_SOURCE_DIR}/Quillbrook/Screens/Controls/Gallery.qml)
set(gallery_template ${CMAKE_CURRENT_BINARY_DIR}/gallery.ts)
set(made_up_sources ${CMAKE_CURRENT_BINARY_DIR}/quillbrook_eo.ts ${CMAKE_CURRENT_BINARY_DIR}/gallery_eo.ts)
add_custom_command(
    OUTPUT ${QUILLBROOK_MADE_UP_LANGUAGE}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${QUILLBROOK_MADE_UP_DATA}/quillbrook/translations
    COMMAND ${QUILLBROOK_LUPDATE} -silent -no-obsolete -locations none ${gallery} -ts ${gallery_template}
    COMMAND ${QUILLBROOK_PYTHON} -B ${CMAKE_CURRENT_SOURCE_DIR}/Support/made_up_language.py
        ${QUILLBROOK_TRANSLATION_TEMPLATE} ${gallery_template} ${made_up_sources}
    COMMAND ${QUILLBROOK_LRELEASE} -silent ${made_up_sources} -qm ${QUILLBROOK_MADE_UP_LANGUAGE}
    DEPENDS ${QUILLBROOK_TRANSLATION_TEMPLATE} translation_template ${gallery} Support/made_up_language.py
    COMMENT "Making up a language"
    VERBATIM)
add_custom_target(made_up_language ALL DEPENDS ${QUILLBROOK_MADE_UP_LANGUAGE})
