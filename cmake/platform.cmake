# The board's software: the program is compiled with `platform_headers` and linked with
# `board_platform`. Both come from platform/, or from the SDK in BOARD_SDK if that is set.
set(BOARD_SDK "" CACHE PATH "A board's headers (include/) and libraries (lib/) instead of platform/")

include(${CMAKE_CURRENT_LIST_DIR}/checkSDK.cmake)

add_library(platform_headers INTERFACE)
add_library(board_platform INTERFACE)
if(BOARD_SDK)
    file(GLOB board_libraries ${BOARD_SDK}/lib/*.a ${BOARD_SDK}/lib/*.so)
    check_headers(${BOARD_SDK}/include)
    check_libraries(${BOARD_SDK}/lib ${board_libraries})
    target_include_directories(platform_headers INTERFACE ${BOARD_SDK}/include)
    # The board's libraries and the program's depend on each other in any order.
    list(JOIN board_libraries "," libraries)
    target_link_libraries(board_platform INTERFACE
        $<LINK_GROUP:RESCAN,efi_program,efi_data,${libraries}>)
else()
    target_include_directories(platform_headers INTERFACE ${PROJECT_SOURCE_DIR}/platform/include)
    target_link_libraries(board_platform INTERFACE platform_host)
endif()
check_times()
