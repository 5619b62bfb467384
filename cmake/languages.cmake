# The languages of the board: each is a message catalogue that is there, and nothing else. A catalogue
# names its language: text 9005 is the tag, 9006 the name in the language itself.
#
# Sets CATALOGUES, the files, and LANGUAGES, their tags. The number of a language is its place there:
# every board has 0 for English, the reference, and 1 for Japanese; the others follow by tag.
if(NOT CATALOGUE_SOURCES)
    set(CATALOGUE_SOURCES ${PROJECT_SOURCE_DIR}/board/catalogue)
endif()
file(GLOB CATALOGUES CONFIGURE_DEPENDS ${CATALOGUE_SOURCES}/messages_*.msg)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CATALOGUES})

# Sets `variable` to caption `number` in a language.
function(read_caption variable language number)
    file(READ ${CATALOGUE_SOURCES}/messages_${language}.msg texts)
    if(NOT texts MATCHES "\n${number} \"([^\n]+)\"\n")
        message(FATAL_ERROR "messages_${language}.msg has no text ${number}.")
    endif()
    set(${variable} "${CMAKE_MATCH_1}" PARENT_SCOPE)
endfunction()

set(LANGUAGES en ja)
foreach(catalogue IN LISTS CATALOGUES)
    string(REGEX REPLACE "^.*/messages_(.*)\\.msg$" "\\1" language ${catalogue})
    list(APPEND LANGUAGES ${language})
endforeach()
list(REMOVE_DUPLICATES LANGUAGES)

set(LANGUAGE_TABLE)
foreach(language IN LISTS LANGUAGES)
    read_caption(tag ${language} 9005)
    read_caption(name ${language} 9006)
    if(NOT tag STREQUAL language OR NOT tag MATCHES "^[a-z][a-z]+(-[A-Za-z0-9]+)*$")
        message(FATAL_ERROR "messages_${language}.msg has the language tag ${tag}.")
    endif()
    string(APPEND LANGUAGE_TABLE "    {\"${tag}\", \"${name}\"},\n")
endforeach()
