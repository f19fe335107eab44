# The Debian package of the layout that is configured; scripts/package makes all three, one after the other, out of one
# build folder. What a layout is made of comes from its own install rules; here is what only a package has.

set(packageName "brindle-ui-${BRINDLE_LAYOUT}")
set(packaging "${PROJECT_SOURCE_DIR}/packaging")
set(made "${PROJECT_BINARY_DIR}/packaging/${BRINDLE_LAYOUT}")

# The program itself writes and deletes a Brindle.desktop: the entry of a package needs another name.
set(packagePrefix "/")
set(hidden "true")
if(BRINDLE_LAYOUT STREQUAL "machine")
    set(applicationId "com.brindle.ui")
    set(title "Brindle")
    set(start "/${BRINDLE_BIN_DIR}/brindle-ui -u service")
    set(group "brindle")
    set(pageSection "1")
    set(summary "companion of the support agent, for every user of a machine")
    set(about "This package is for machines whose agent runs as a service and
starts the companion.")
elseif(BRINDLE_LAYOUT STREQUAL "reach")
    set(applicationId "com.brindle.ui.reach")
    set(title "Ostrel Reach")
    set(start "/${BRINDLE_BIN_DIR}/brindle-ui -u oreach")
    set(group "ostrelreach")
    set(pageSection "1reach")
    set(summary "companion of the support agent, for Ostrel Reach")
    set(about "This package is for machines whose Ostrel Reach agent starts the companion.")
else()
    set(applicationId "com.brindle.ui.user")
    set(title "Brindle")
    set(start "brindle-user-install --run")
    set(hidden "false")
    set(pageSection "1user")
    set(packagePrefix "/usr/lib/${packageName}/home")
    set(summary "companion of the support agent, for single users")
    set(about "This package lets each user lay the companion out in the home
directory: brindle-user-install does it.")
endif()

# installFilled(<template> <folder> <file>): a template with the values above in it.
function(installFilled template folder file)
    configure_file("${packaging}/${template}" "${made}/${file}" @ONLY)
    install(FILES "${made}/${file}" DESTINATION "${folder}" COMPONENT package EXCLUDE_FROM_ALL)
endfunction()

# installCompressed(<source> <folder> <file>): what Debian wants compressed.
function(installCompressed source folder file)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${source}")
    execute_process(COMMAND gzip -9nc "${source}" OUTPUT_FILE "${made}/${file}" COMMAND_ERROR_IS_FATAL ANY)
    install(FILES "${made}/${file}" DESTINATION "${folder}" COMPONENT package EXCLUDE_FROM_ALL)
endfunction()

file(MAKE_DIRECTORY "${made}")
set(documents "/usr/share/doc/${packageName}")
install(FILES "${packaging}/copyright" DESTINATION "${documents}" COMPONENT package EXCLUDE_FROM_ALL)
installCompressed("${packaging}/changelog" "${documents}" changelog.gz)
# A section of its own each, so that packages can stand beside each other; man(1) finds the page in any of them.
installCompressed("${PROJECT_SOURCE_DIR}/docs/man/brindle-ui.1" /usr/share/man/man1 "brindle-ui.${pageSection}.gz")
installFilled(application.desktop.in /usr/share/applications "${applicationId}.desktop")
installFilled(application.metainfo.xml.in /usr/share/metainfo "${applicationId}.metainfo.xml")
install(FILES "${PROJECT_SOURCE_DIR}/resources/icons/logo.svg" DESTINATION /usr/share/icons/hicolor/scalable/apps
    RENAME "${applicationId}.svg" COMPONENT package EXCLUDE_FROM_ALL)

if(BRINDLE_LAYOUT STREQUAL "user")
    install(PROGRAMS "${packaging}/brindle-user-install" DESTINATION /usr/bin COMPONENT package EXCLUDE_FROM_ALL)
    installCompressed("${PROJECT_SOURCE_DIR}/docs/man/brindle-user-install.1" /usr/share/man/man1
        brindle-user-install.1.gz)
else()
    installFilled(deb/lintian-overrides.in /usr/share/lintian/overrides "${packageName}")
    cmake_path(GET BRINDLE_BIN_DIR PARENT_PATH productDir)
    foreach(script IN ITEMS postinst prerm postrm)
        configure_file("${packaging}/deb/${script}.in" "${made}/${script}" @ONLY)
        list(APPEND CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${made}/${script}")
    endforeach()
    set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
    set(CPACK_DEBIAN_PACKAGE_DEPENDS passwd)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${packageName})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Brindle maintainers <packages@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${summary})
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "brindle-ui is what a customer sees of a remote-support session: a small
window that stays on top, and the questions that a technician's requests
raise. It talks to the support agent, which is a program of its own,
through two named pipes.
.
${about}")
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# Both are looked for while the program runs: a web view for AR sessions, and the desktop's list of applications.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libwebkit2gtk-4.1-0 | libwebkit2gtk-4.0-37, desktop-file-utils")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_STRIP_FILES ON)
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX "${packagePrefix}")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# Neither the demo's programs nor anything else that has no component.
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};brindle;runtime;/;${PROJECT_BINARY_DIR};brindle;package;/")
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
