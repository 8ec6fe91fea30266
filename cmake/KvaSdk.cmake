# KVASDK_in_use: the libKVASDK that the tool is linked to. Always a dynamic library, looked for in
# lib/ beside the program's folder, so that another one of that name can take its place at start.
add_library(KVASDK_in_use INTERFACE)
if(KVASDK_ROOT)
    find_library(KVASDK_LIBRARY KVASDK PATHS "${KVASDK_ROOT}/lib" NO_DEFAULT_PATH REQUIRED)
    # By name, not by path: a library without a SONAME would be recorded with its path otherwise.
    target_link_directories(KVASDK_in_use INTERFACE "${KVASDK_ROOT}/lib")
    target_link_libraries(KVASDK_in_use INTERFACE -lKVASDK)
    file(COPY "${KVASDK_LIBRARY}" DESTINATION "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}"
        FOLLOW_SYMLINK_CHAIN)
    # In no Debian package: vq-tl4 is the tool alone, whichever library it was built with.
    install(FILES "${KVASDK_LIBRARY}" DESTINATION "${VQTL4_LIBRARY_DESTINATION}" COMPONENT plain)
else()
    add_subdirectory(simulator)
    target_link_libraries(KVASDK_in_use INTERFACE KVASDK)
    install(TARGETS KVASDK
        LIBRARY DESTINATION "${VQTL4_LIBRARY_DESTINATION}" COMPONENT simulator)
endif()
