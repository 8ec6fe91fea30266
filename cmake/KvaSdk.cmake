# KVASDK_in_use: the libKVASDK that the tool is linked to. Always a dynamic library, looked for in
# lib/ beside the program's folder, so that another one of that name can take its place at start.
add_library(KVASDK_in_use INTERFACE)
if(KVASDK_ROOT)
    find_library(KVASDK_LIBRARY KVASDK PATHS "${KVASDK_ROOT}/lib" NO_DEFAULT_PATH REQUIRED NO_CACHE)
    # The file and the links to it: the linker looks for one name, the started program for the one
    # that the library gives itself.
    file(REAL_PATH "${KVASDK_LIBRARY}" real)
    set(names "")
    file(GLOB candidates "${KVASDK_ROOT}/lib/libKVASDK.*")
    foreach(candidate IN LISTS candidates)
        file(REAL_PATH "${candidate}" its_real)
        if(its_real STREQUAL real)
            list(APPEND names "${candidate}")
        endif()
    endforeach()
    file(COPY ${names} DESTINATION "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}" FOLLOW_SYMLINK_CHAIN)
    if(APPLE)
        # The programs record the name that the library gives itself, which may be any path. By this
        # one it is found in lib/. A changed library has to be signed anew.
        file(REAL_PATH "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/libKVASDK.dylib" copy)
        execute_process(COMMAND install_name_tool -id @rpath/libKVASDK.dylib "${copy}"
            COMMAND_ERROR_IS_FATAL ANY)
        execute_process(COMMAND codesign --force --sign - "${copy}" COMMAND_ERROR_IS_FATAL ANY)
    endif()
    # By name, not by path: a library without a SONAME would be recorded with its path otherwise.
    target_link_directories(KVASDK_in_use INTERFACE "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
    target_link_libraries(KVASDK_in_use INTERFACE -lKVASDK)
    # In no Debian package: vq-tl4 is the tool alone, whichever library it was built with.
    list(JOIN names "\" \"" names)
    install(CODE "file(INSTALL \"${names}\" FOLLOW_SYMLINK_CHAIN
        DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${VQTL4_LIBRARY_DESTINATION}\")" COMPONENT plain)
else()
    add_subdirectory(simulator)
    target_link_libraries(KVASDK_in_use INTERFACE KVASDK)
    install(TARGETS KVASDK
        LIBRARY DESTINATION "${VQTL4_LIBRARY_DESTINATION}" COMPONENT simulator)
endif()
