# What is installed where, and in which package. Each component is a Debian package: "tool" (also
# what names none) is vq-tl4, "simulator" is vq-tl4-simulator. See packaging/CMakeLists.txt.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME tool)
if(APPLE AND VQTL4_BUNDLE)
    set(VQTL4_PROGRAM_DESTINATION VQ-TL4.app/Contents/MacOS)
    set(VQTL4_LIBRARY_DESTINATION VQ-TL4.app/Contents/Frameworks)
    set(VQTL4_RESOURCES_DESTINATION VQ-TL4.app/Contents/Resources)
    set(VQTL4_DATA_DESTINATION "${VQTL4_RESOURCES_DESTINATION}")
else()
    set(VQTL4_PROGRAM_DESTINATION bin)
    set(VQTL4_LIBRARY_DESTINATION lib)
    set(VQTL4_RESOURCES_DESTINATION Resources)
    set(VQTL4_DATA_DESTINATION "${CMAKE_INSTALL_DATADIR}")
endif()

# The packages put these destinations into a folder of their own.
set(VQTL4_PACKAGE_PREFIX /opt/vq-tl4)

# vqtl4_install_system(<component> <folder> PROGRAMS|FILES|DIRECTORY <path>... [RENAME <name>]):
# into a folder of the system, such as usr/bin. In the package alone: a plain install leaves these
# out and writes nothing outside its prefix.
function(vqtl4_install_system component folder)
    install(${ARGN} DESTINATION "../../${folder}" COMPONENT "${component}" EXCLUDE_FROM_ALL)
endfunction()

# vqtl4_link_program(<component> <name>): the installed program of that name as a command, in /usr/bin.
function(vqtl4_link_program component name)
    set(link "${CMAKE_CURRENT_BINARY_DIR}/usr-bin/${name}")
    file(MAKE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/usr-bin")
    file(CREATE_LINK "${VQTL4_PACKAGE_PREFIX}/${VQTL4_PROGRAM_DESTINATION}/${name}" "${link}" SYMBOLIC)
    vqtl4_install_system("${component}" usr/bin FILES "${link}")
endfunction()

# vqtl4_install_completions(<component> <file for bash> <file for zsh>): where the shells look.
function(vqtl4_install_completions component bash zsh)
    vqtl4_install_system("${component}" usr/share/bash-completion/completions FILES "${bash}")
    vqtl4_install_system("${component}" usr/share/zsh/vendor-completions FILES "${zsh}")
    # Below the prefix of a plain install. The component is in no package.
    install(FILES "${bash}" DESTINATION "${VQTL4_DATA_DESTINATION}/bash-completion/completions"
        COMPONENT plain)
    install(FILES "${zsh}" DESTINATION "${VQTL4_DATA_DESTINATION}/zsh/site-functions" COMPONENT plain)
endfunction()

# vqtl4_install_compressed(<component> <folder> <file> [<name>]): into a folder of the system, by
# gzip, the same bytes at each build.
function(vqtl4_install_compressed component folder file)
    set(name "${file}")
    if(ARGN)
        set(name "${ARGN}")
    endif()
    set(result "${CMAKE_CURRENT_BINARY_DIR}/${component}/${name}.gz")
    file(MAKE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/${component}")
    add_custom_command(OUTPUT "${result}"
        COMMAND sh -c "gzip -9n <\"$1\" >\"$2\"" sh "${CMAKE_CURRENT_SOURCE_DIR}/${file}" "${result}"
        DEPENDS "${file}"
        VERBATIM)
    add_custom_target("${component}_${name}.gz" ALL DEPENDS "${result}")
    vqtl4_install_system("${component}" "${folder}" FILES "${result}")
endfunction()
