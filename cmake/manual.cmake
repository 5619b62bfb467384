# Manual pages, made from the --help of the programs, so that each text exists once.

# make_manual(PAGE PROGRAM DESCRIPTION [INCLUDED]): makes PAGE, a path of the form FOLDER/name.section,
# from the help of PROGRAM and its subcommands and the sections of the file INCLUDED.
function(make_manual page program description)
    find_program(HELP2MAN help2man REQUIRED)
    set(print_help ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/print_help)
    cmake_path(GET page EXTENSION LAST_ONLY section)
    string(SUBSTRING ${section} 1 -1 section)
    set(include ${ARGN})
    list(TRANSFORM include PREPEND --include=)
    # Without a date, so that the same sources give the same page.
    add_custom_command(OUTPUT ${page}
        COMMAND ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0 LC_ALL=C.UTF-8
            ${HELP2MAN} --no-info --section=${section}
            --version-string=${PROJECT_VERSION} --name=${description}
            --source=${PROJECT_NAME} ${include} --output=${page} "${print_help} ${program}"
        DEPENDS ${program} ${print_help} ${ARGN} VERBATIM)
endfunction()

# compress_manual(PAGE [TARGET]): makes PAGE.gz. If another folder makes PAGE, TARGET does so.
function(compress_manual page)
    find_program(GZIP gzip REQUIRED)
    # Without a date, too.
    add_custom_command(OUTPUT ${page}.gz
        COMMAND ${GZIP} -9nkf ${page}
        DEPENDS ${page} ${ARGN} VERBATIM)
endfunction()
