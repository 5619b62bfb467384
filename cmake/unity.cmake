# How builds that only test compile several sources at once (CMAKE_UNITY_BUILD): sooner, as every
# header is then read once, and rebuilt later. Builds that are for a board compile each alone.
if(NOT CMAKE_UNITY_BUILD)
    return()
endif()

# Compiles files of a target alone.
function(compile_alone target)
    if(TARGET ${target})
        list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/)
        set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target}
            PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
endfunction()

# What is these files' own has a name that another file of the target has for its own.
compile_alone(efi_data data/PrimitiveTypeArray.cpp)
compile_alone(efi_program pages/EFIRestorePage.cpp)
compile_alone(platform_channel platform/host/channel/VersionInfoPacket.cpp
    platform/host/channel/WireText.cpp platform/host/channel/refusalPayload.cpp)
compile_alone(platform_web
    platform/host/web/UrlencodedReader.cpp platform/host/web/partHeader.cpp)
compile_alone(board_backend board/backend/Server.cpp board/backend/initialPayload.cpp)
compile_alone(board_web board/web/dailyRound.cpp)

# These need what the program defines; programs without it use other files of the libraries.
compile_alone(platform_html platform/host/html/HTMLPage.cpp)
compile_alone(platform_web
    platform/host/web/AbstractMain.cpp platform/host/web/CommonDefaultPage.cpp)
# A source of both libraries.
compile_alone(board_inspector board/web/utf8.cpp)
compile_alone(board_web board/web/utf8.cpp)
# The tests' scripted platform has its own.
compile_alone(platform_base platform/host/base/getCGIPath.cpp)
