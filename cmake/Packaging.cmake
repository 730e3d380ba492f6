# What a Linux installation holds beside the two programs, and the Debian package (cpack -G DEB).
# The configured files name absolute paths under CMAKE_INSTALL_PREFIX, and the package installs
# under the same prefix: configure with -DCMAKE_INSTALL_PREFIX=/usr to build the .deb.

set(VKL_APP_ID com.loomvault.vkleditor)
set(VKL_RELEASE_DATE 2026-11-22)
# The install directory the desktop entry passes as field 2: the editor's data folder, whose
# examples/ name their bitmaps under [installdir].
set(VKL_DESKTOP_INSTALL_DIR ${CMAKE_INSTALL_FULL_DATADIR}/vkleditor)
set(VKL_INSTALL_FULL_BINDIR ${CMAKE_INSTALL_FULL_BINDIR})
set(VKL_DESKTOP_LAUNCHER ${CMAKE_INSTALL_FULL_LIBEXECDIR}/vkleditor/vkleditor-desktop)

set(pkg ${PROJECT_SOURCE_DIR}/packaging)
set(out ${PROJECT_BINARY_DIR}/packaging)
configure_file(${pkg}/vkleditor-desktop.in ${out}/vkleditor-desktop @ONLY)
configure_file(${pkg}/${VKL_APP_ID}.desktop.in ${out}/${VKL_APP_ID}.desktop @ONLY)
configure_file(${pkg}/${VKL_APP_ID}.metainfo.xml.in ${out}/${VKL_APP_ID}.metainfo.xml @ONLY)

# Manual pages, compressed as Debian installs them.
find_program(VKL_GZIP gzip REQUIRED)
set(VKL_MAN_PAGES)
foreach(page vkleditor vklcheck)
    configure_file(${pkg}/man/${page}.1 ${out}/${page}.1 @ONLY)
    add_custom_command(OUTPUT ${out}/${page}.1.gz
        COMMAND ${VKL_GZIP} -9n -c ${out}/${page}.1 > ${out}/${page}.1.gz
        DEPENDS ${out}/${page}.1 VERBATIM)
    list(APPEND VKL_MAN_PAGES ${out}/${page}.1.gz)
endforeach()
add_custom_target(vkl_man_pages ALL DEPENDS ${VKL_MAN_PAGES})
install(FILES ${VKL_MAN_PAGES} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

install(PROGRAMS ${out}/vkleditor-desktop DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/vkleditor)
install(FILES ${out}/${VKL_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${out}/${VKL_APP_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${pkg}/vkleditor-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
    RENAME vkleditor.xml)

set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
foreach(icon vkleditor:apps text-x-vkl-menu:mimetypes)
    string(REPLACE ":" ";" parts ${icon})
    list(GET parts 0 name)
    list(GET parts 1 context)
    install(FILES ${pkg}/icons/${name}.svg DESTINATION ${icons}/scalable/${context})
    foreach(size 48 256)
        install(FILES ${pkg}/icons/${name}-${size}.png DESTINATION ${icons}/${size}x${size}/${context}
            RENAME ${name}.png)
    endforeach()
endforeach()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vkleditor/examples)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vkleditor)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR Loomvault)
set(CPACK_PACKAGE_CONTACT "VKL Editor maintainers <maintainers@users.noreply.c-seed-bface06a.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "editor for the menu files of the Brindlemark add-on")
set(CPACK_PACKAGE_DESCRIPTION
    "The VKL Editor edits menu files (.vkl), the plain-text definitions of the custom menus of
the Brindlemark add-on, as a grid of menu items beside a tree of submenus, in English or
German. The package also holds vklcheck, which tells what the editor makes of a menu file
without a window, manual pages and three example menus.")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION editors)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://www.loomvault.com/vkleditor)
# The libraries the programs link, with the versions Debian's symbols files ask for.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
