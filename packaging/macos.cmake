# VQ-TL4.app, with Qt and libKVASDK inside, signed, on a disk image: cmake --preset bundle, then cpack.
if(NOT VQTL4_BUNDLE)
    install(PROGRAMS ${scripts} DESTINATION "${VQTL4_PROGRAM_DESTINATION}")
    return()
endif()

set(bundle VQ-TL4.app)
set_target_properties(vq-tl4 PROPERTIES
    MACOSX_BUNDLE ON
    MACOSX_BUNDLE_INFO_PLIST "${CMAKE_CURRENT_SOURCE_DIR}/macos/Info.plist.in"
    OUTPUT_NAME VQ-TL4)
set_target_properties(vq-tl4 vq-tl4ctl PROPERTIES INSTALL_RPATH "@executable_path/../Frameworks")
install(PROGRAMS ${scripts} DESTINATION "${VQTL4_RESOURCES_DESTINATION}")
# For whoever puts another library into the finished bundle, which breaks its signature.
install(PROGRAMS macos/sign DESTINATION "${VQTL4_RESOURCES_DESTINATION}" RENAME vq-tl4-sign)
install(FILES macos/VQ_TL4.icns DESTINATION "${VQTL4_RESOURCES_DESTINATION}")
install(DIRECTORY macos/en.lproj macos/ja.lproj DESTINATION "${VQTL4_RESOURCES_DESTINATION}")

# That of the Qt in use, whatever other Qt is on the path.
get_filename_component(beside_qmake "${qmake}" DIRECTORY)
execute_process(COMMAND "${qmake}" -query QT_HOST_BINS
    OUTPUT_VARIABLE qt_programs OUTPUT_STRIP_TRAILING_WHITESPACE)
find_program(MACDEPLOYQT macdeployqt PATHS "${qt_programs}" "${beside_qmake}" NO_DEFAULT_PATH REQUIRED)
set(VQTL4_SIGNING_IDENTITY "-" CACHE STRING "Who signs the bundle; -: ad hoc, for this computer alone")
install(CODE "
    set(bundle \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${bundle}\")
    execute_process(COMMAND \"${MACDEPLOYQT}\" \"\${bundle}\" -always-overwrite
        \"-executable=\${bundle}/Contents/MacOS/vq-tl4ctl\" COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND \"${CMAKE_CURRENT_SOURCE_DIR}/macos/sign\" \"\${bundle}\" \"${VQTL4_SIGNING_IDENTITY}\"
        COMMAND_ERROR_IS_FATAL ANY)")

set(CPACK_GENERATOR DragNDrop)
set(CPACK_MONOLITHIC_INSTALL ON) # not an image for each component
set(CPACK_DMG_VOLUME_NAME VQ-TL4)
