# Install rules and the Debian package (`make package`, or `cpack` in the
# build folder). Installed layout under the prefix (/usr in the package):
#   bin/OrvaneWin, bin/trusim-emulator
#   lib/<multiarch>/orvane-x/  the UI library, found through the program's RUNPATH
#   share/orvane-x/lang/  the string tables, found from the program's location
#   share/orvane-x/translations/  the window's translations (installed by lang/)
find_program(RSVG_CONVERT rsvg-convert)
find_program(GZIP_PROGRAM gzip)
if(NOT RSVG_CONVERT OR NOT GZIP_PROGRAM OR NOT TARGET OrvaneWin)
  message(STATUS "No package rules: rsvg-convert and gzip are needed (scripts/install-deps.sh)")
  return()
endif()

# The multiarch folder keeps the private library out of the linker's search
# path, so installing needs no ldconfig run.
if(CMAKE_LIBRARY_ARCHITECTURE)
  set(ORVANE_PRIVATE_LIB_DIR "lib/${CMAKE_LIBRARY_ARCHITECTURE}/orvane-x")
else()
  set(ORVANE_PRIVATE_LIB_DIR "lib/orvane-x")
endif()
set(ORVANE_DOC_DIR "share/doc/orvane-x")
set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(staged ${CMAKE_BINARY_DIR}/packaging)

set_target_properties(OrvaneWin PROPERTIES INSTALL_RPATH "$ORIGIN/../${ORVANE_PRIVATE_LIB_DIR}")
install(TARGETS OrvaneWin trusim-emulator RUNTIME DESTINATION bin)
install(TARGETS orvane_ui LIBRARY DESTINATION ${ORVANE_PRIVATE_LIB_DIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/lang/ DESTINATION ${ORVANE_DATA_DIR}/lang
        FILES_MATCHING PATTERN "*.tsv")

# Files with the build's values filled in; the metainfo's screenshot lives on the web site.
configure_file(${packaging}/orvane-x.desktop ${staged}/${ORVANE_APP_ID}.desktop @ONLY)
configure_file(${packaging}/orvane-x.metainfo.xml.in ${staged}/${ORVANE_APP_ID}.metainfo.xml @ONLY)
install(FILES ${staged}/${ORVANE_APP_ID}.desktop DESTINATION share/applications)
install(FILES ${staged}/${ORVANE_APP_ID}.metainfo.xml DESTINATION share/metainfo)
install(FILES ${packaging}/orvane-x.svg DESTINATION share/icons/hicolor/scalable/apps
        RENAME ${ORVANE_APP_ID}.svg)
install(FILES ${packaging}/copyright DESTINATION ${ORVANE_DOC_DIR})

# Pictures of the icon for desktops without SVG, and compressed pages,
# made by the build (gzip -n: no time stamp, so the package is reproducible).
set(made_files)
foreach(size 48 64 128 256)
  set(png ${staged}/icons/${size}/${ORVANE_APP_ID}.png)
  add_custom_command(OUTPUT ${png}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${staged}/icons/${size}
    COMMAND ${RSVG_CONVERT} -w ${size} -h ${size} ${packaging}/orvane-x.svg -o ${png}
    DEPENDS ${packaging}/orvane-x.svg VERBATIM)
  install(FILES ${png} DESTINATION share/icons/hicolor/${size}x${size}/apps)
  list(APPEND made_files ${png})
endforeach()
foreach(page OrvaneWin.1 trusim-emulator.1 changelog)
  configure_file(${packaging}/${page} ${staged}/${page} @ONLY)
  add_custom_command(OUTPUT ${staged}/${page}.gz
    COMMAND ${GZIP_PROGRAM} -9nf -k ${staged}/${page}
    DEPENDS ${staged}/${page} VERBATIM)
  list(APPEND made_files ${staged}/${page}.gz)
endforeach()
add_custom_target(orvane_package_files ALL DEPENDS ${made_files})
install(FILES ${staged}/OrvaneWin.1.gz ${staged}/trusim-emulator.1.gz DESTINATION share/man/man1)
install(FILES ${staged}/changelog.gz DESTINATION ${ORVANE_DOC_DIR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvane-x)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "companion of the Orvane X golf-swing sensor")
set(CPACK_PACKAGE_DESCRIPTION
    "Finds and connects the Orvane X swing sensor over Bluetooth LE, turns each\n"
    "measured swing into ball-launch data and delivers the shot to the E6 golf\n"
    "simulator over TruSim, on this computer or another one. Records a short\n"
    "webcam clip of every swing and replays it. Includes trusim-emulator, a\n"
    "stand-in simulator for trying the program without E6.")
string(CONCAT CPACK_PACKAGE_DESCRIPTION ${CPACK_PACKAGE_DESCRIPTION})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Orvane X developers <dev@orvane.invalid>")
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${ORVANE_WEB_SITE})
# Libraries come from dpkg-shlibdeps. What is loaded at run time by name is
# listed here: Qt's window system plugins, and the GStreamer elements of the
# camera, recording and replay (v4l2src, mp4mux, qtdemux and pulsesrc in good;
# openh264 and voaacenc in bad; playbin, tee and videoconvert in base).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "qt6-qpa-plugins, gstreamer1.0-plugins-base, gstreamer1.0-plugins-good, gstreamer1.0-plugins-bad")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "bluez, pulseaudio | pipewire-pulse")
include(CPack)
