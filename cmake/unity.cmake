# Settings of unity builds (CMAKE_UNITY_BUILD), which compile several sources at once: faster, because
# each header is read once, but slower to rebuild. Only test builds use them, not builds for a board.
if(NOT CMAKE_UNITY_BUILD)
    return()
endif()

# Compiles the given files of a target separately.
function(compile_alone target)
    if(TARGET ${target})
        list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/)
        set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target}
            PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
endfunction()

# These files have a local name that another file of the target also uses.
compile_alone(efi_data data/PrimitiveTypeArray.cpp)
compile_alone(efi_program pages/EFIRestorePage.cpp)
compile_alone(platform_channel platform/host/channel/VersionInfoPacket.cpp
    platform/host/channel/WireText.cpp platform/host/channel/refusalPayload.cpp)
compile_alone(platform_web
    platform/host/web/UrlencodedReader.cpp platform/host/web/partHeader.cpp)
compile_alone(board_backend board/backend/Server.cpp board/backend/initialPayload.cpp)
compile_alone(board_web board/web/dailyRound.cpp)

# These need definitions of the program; programs without them use other files of the libraries.
compile_alone(platform_html platform/host/html/HTMLPage.cpp)
compile_alone(platform_web
    platform/host/web/AbstractMain.cpp platform/host/web/CommonDefaultPage.cpp)
# Both libraries contain this source.
compile_alone(board_inspector board/web/utf8.cpp)
compile_alone(board_web board/web/utf8.cpp)
# The scripted platform of the tests defines the same function.
compile_alone(platform_base platform/host/base/getCGIPath.cpp)
