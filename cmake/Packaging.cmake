# Installing Vantrel like a desktop program, and its Debian package.
#   cmake --install build [--prefix P]     (DESTDIR honoured)
#   cpack --config build/CPackConfig.cmake (a .deb)
# The bundle stays whole and relocatable under lib/vantrel; bin/vantrel leads to its program.

include(GNUInstallDirs)
set(VANTREL_APP_ID com.Morlane.Vantrel)
# Qt names the windows' class after the program's file name.
set(VANTREL_WM_CLASS Vantrel)

set(VANTREL_METAINFO_ID com.morlane.Vantrel) # AppStream wants the domain in lower case
set(VANTREL_DOCDIR ${CMAKE_INSTALL_DATADIR}/doc/vantrel)

# The program as a target, so that packages strip it; the rest of the bundle as the build made it.
install(TARGETS Vantrel portal-shot x11-grab vantrel_magick DESTINATION lib/vantrel/Vantrel.app/Contents/MacOS)
install(DIRECTORY ${BUNDLE_DIR} DESTINATION lib/vantrel USE_SOURCE_PERMISSIONS
        PATTERN Contents/MacOS/Vantrel EXCLUDE PATTERN Contents/MacOS/portal-shot EXCLUDE
        PATTERN Contents/MacOS/x11-grab EXCLUDE PATTERN Contents/MacOS/libvantrel-magick.so EXCLUDE)
set(manpage ${CMAKE_BINARY_DIR}/man/vantrel.1.gz)
add_custom_command(OUTPUT ${manpage}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/man
  COMMAND sh -c "gzip -9n < '${CMAKE_SOURCE_DIR}/resources/man/vantrel.1' > '${manpage}'"
  DEPENDS resources/man/vantrel.1 VERBATIM)
add_custom_target(manpage ALL DEPENDS ${manpage})
install(FILES ${manpage} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
# Made at install time, so that a prefix given to `cmake --install` counts.
install(CODE "
  set(root \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
  file(MAKE_DIRECTORY \"\${root}/${CMAKE_INSTALL_BINDIR}\" \"\${root}/${CMAKE_INSTALL_DATADIR}/applications\")
  file(CREATE_LINK ../lib/vantrel/Vantrel.app/Contents/MacOS/Vantrel
       \"\${root}/${CMAKE_INSTALL_BINDIR}/vantrel\" SYMBOLIC)
  set(VANTREL_EXEC \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/vantrel\")
  if(VANTREL_EXEC MATCHES \"[ \t]\")
    set(VANTREL_EXEC \"\\\"\${VANTREL_EXEC}\\\"\") # quoted, as one argument
  endif()
  set(VANTREL_WM_CLASS ${VANTREL_WM_CLASS})
  configure_file(\"${CMAKE_SOURCE_DIR}/resources/desktop/${VANTREL_APP_ID}.desktop.in\"
                 \"\${root}/${CMAKE_INSTALL_DATADIR}/applications/${VANTREL_APP_ID}.desktop\" @ONLY)")

configure_file(resources/desktop/${VANTREL_METAINFO_ID}.metainfo.xml.in
               ${CMAKE_BINARY_DIR}/share/${VANTREL_METAINFO_ID}.metainfo.xml @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/share/${VANTREL_METAINFO_ID}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

# The icon in the hicolor theme: the SVG, and pictures of the usual sizes drawn from it.
install(FILES resources/icons/Vantrel.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
        RENAME ${VANTREL_APP_ID}.svg)
set(THEME_ICONS)
foreach(size 16 24 32 48 64 128 256)
  set(out ${CMAKE_BINARY_DIR}/icons/${size}/${VANTREL_APP_ID}.png)
  add_custom_command(OUTPUT ${out}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/icons/${size}
    COMMAND render_icons ${CMAKE_SOURCE_DIR}/resources/icons/Vantrel.svg ${size} ${out}
    DEPENDS render_icons ${CMAKE_SOURCE_DIR}/resources/icons/Vantrel.svg VERBATIM)
  list(APPEND THEME_ICONS ${out})
  install(FILES ${out} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
add_custom_target(theme_icons ALL DEPENDS ${THEME_ICONS})

# What Debian asks of every package: the copyright and a compressed changelog.
set(changelog ${CMAKE_BINARY_DIR}/debian/changelog.gz)
add_custom_command(OUTPUT ${changelog}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/debian
  COMMAND sh -c "gzip -9n < '${CMAKE_SOURCE_DIR}/resources/debian/changelog' > '${changelog}'"
  DEPENDS resources/debian/changelog VERBATIM)
add_custom_target(debian_changelog ALL DEPENDS ${changelog})
install(FILES resources/debian/copyright ${changelog} DESTINATION ${VANTREL_DOCDIR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vantrel)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Morlane <vantrel@morlane.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "resident screen-capture utility")
set(CPACK_PACKAGE_DESCRIPTION "Vantrel waits in the background. Shift+Ctrl+2 anywhere runs
an interactive capture; the editor scales it, burns in a caption and sends it
to a file in one of seven formats, to a new mail message, to the clipboard or
to the printer.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Beyond the linked libraries: the capture helper's tools, the mail hand-off, Qt's X11 platform.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "xclip, slop, maim, xdg-utils, qt6-qpa-plugins, libqt6svg6")
# Wayland sessions: the capture and the key go through the desktop's portals.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-desktop-portal")
set(CPACK_STRIP_FILES ON)
include(CPack)
