#   compiled_translations(VARIABLE NAME)
# VARIABLE becomes a source file that holds all of translations/NAME_LANGUAGE.ts as resources,
# ":/translations/NAME_LANGUAGE.qm"; nothing where Qt's lrelease isn't installed. That is a tool of the building machine,
# for whichever machine the rest is built.
function(compiled_translations variable name)
    get_target_property(moc Qt5::moc IMPORTED_LOCATION)
    get_filename_component(tools ${moc} DIRECTORY)
    find_program(ORKA_LRELEASE NAMES lrelease-qt5 lrelease HINTS ${tools} /usr/lib/qt5/bin)
    # Debian has a link of that name without the tool behind it.
    execute_process(COMMAND ${ORKA_LRELEASE} -version RESULT_VARIABLE status OUTPUT_QUIET ERROR_QUIET)
    if(NOT status EQUAL 0)
        unset(ORKA_LRELEASE CACHE) # it may be installed later
    else()
        file(GLOB translations CONFIGURE_DEPENDS translations/${name}_*.ts)
        foreach(translation ${translations})
            get_filename_component(file ${translation} NAME_WE)
            add_custom_command(OUTPUT ${file}.qm DEPENDS ${translation}
                COMMAND ${ORKA_LRELEASE} -silent ${translation} -qm ${file}.qm)
            string(APPEND files "<file>${file}.qm</file>")
        endforeach()
        set(list ${CMAKE_CURRENT_BINARY_DIR}/${name}.qrc)
        file(WRITE ${list}.new "<RCC><qresource prefix=\"/translations\">${files}</qresource></RCC>\n")
        configure_file(${list}.new ${list} COPYONLY)
        # The first format holds no times: two builds are the same.
        qt5_add_resources(source ${list} OPTIONS --format-version 1)
    endif()
    set(${variable} ${source} PARENT_SCOPE)
endfunction()
