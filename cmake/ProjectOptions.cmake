# What every target of the project is compiled with.
add_library(project_options INTERFACE)
target_compile_options(project_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
    $<$<BOOL:${VQTL4_WARNINGS_AS_ERRORS}>:-Werror>)
target_include_directories(project_options INTERFACE "${PROJECT_SOURCE_DIR}")

if(VQTL4_SANITIZE)
    target_compile_options(project_options INTERFACE
        -fsanitize=${VQTL4_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(project_options INTERFACE -fsanitize=${VQTL4_SANITIZE})
endif()

if(VQTL4_FUZZ)
    target_compile_options(project_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# What the targets that use Qt are compiled with on top.
add_library(qt_options INTERFACE)
target_link_libraries(qt_options INTERFACE project_options)
target_compile_definitions(qt_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_KEYWORDS QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
