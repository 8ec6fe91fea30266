# Before project(). The oldest macOS that the programs run on: without another choice, that of this
# machine, since Homebrew's libraries run on no older one.
if(CMAKE_HOST_APPLE AND NOT CMAKE_OSX_DEPLOYMENT_TARGET)
    set(oldest_macos "$ENV{MACOSX_DEPLOYMENT_TARGET}")
    if(oldest_macos STREQUAL "")
        execute_process(COMMAND sw_vers -productVersion OUTPUT_VARIABLE version COMMAND_ERROR_IS_FATAL ANY)
        string(REGEX MATCH "^(10\\.[0-9]+|[0-9]+)" oldest_macos "${version}")
        if(NOT oldest_macos MATCHES "\\.")
            string(APPEND oldest_macos .0) # 10.15, but 14.0
        endif()
    endif()
    # Not in the cache: the system may have been upgraded when the same folder is configured again.
    set(CMAKE_OSX_DEPLOYMENT_TARGET "${oldest_macos}")
endif()
