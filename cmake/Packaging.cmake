# Installation beyond the two executables (their rules sit beside their targets) and the
# Debian package. `cmake --install` lays the files out where Linux desktops look for them;
# `cpack` (or the `package` target) turns the same layout into zentrik_<version>_<arch>.deb.
include(GNUInstallDirs)

set(ZENTRIK_APP_ID app.zentrik.Zentrik)
set(data_dir ${PROJECT_SOURCE_DIR}/data)

# The launcher, the software-centre entry and the icon describe the window, so a build
# without it installs none of them.
if(ZENTRIK_BUILD_APP)
  install(FILES ${data_dir}/${ZENTRIK_APP_ID}.desktop
          DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${data_dir}/${ZENTRIK_APP_ID}.metainfo.xml
          DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${data_dir}/${ZENTRIK_APP_ID}.svg
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zentrik RENAME copyright)

# The manual page carries the version; Debian ships manual pages compressed, and -n keeps
# the name and time stamp out so the package does not change from one build to the next.
configure_file(${data_dir}/zentrik-cli.1 ${CMAKE_BINARY_DIR}/data/zentrik-cli.1 @ONLY)
set(man_page ${CMAKE_BINARY_DIR}/data/zentrik-cli.1.gz)
add_custom_command(OUTPUT ${man_page}
  COMMAND gzip -9n -c ${CMAKE_BINARY_DIR}/data/zentrik-cli.1 > ${man_page}
  DEPENDS ${CMAKE_BINARY_DIR}/data/zentrik-cli.1
  VERBATIM)
add_custom_target(zentrik_man_page ALL DEPENDS ${man_page})
install(FILES ${man_page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# The package. Library dependencies come from dpkg-shlibdeps; what it cannot see (QML
# modules, Qt plugins and GStreamer elements loaded at run time, fonts) is declared here.
set(ZENTRIK_PACKAGE_MAINTAINER "Zentrik developers <packages@zentrik.app>"
    CACHE STRING "Maintainer field of the Debian package")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zentrik)
set(CPACK_PACKAGE_VENDOR Zentrik)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "desktop AI assistant toolbox")
set(CPACK_PACKAGE_DESCRIPTION
"Zentrik brings hosted AI models (OpenAI, Anthropic, OpenRouter, Together,
fal) to the desktop as small tools: a general chat, form-driven assistants
for marketing, sales, customer support and human resources, a code debugger,
a sample data generator, chat with a PDF, transcribed voice notes and an
image studio. A privacy guard tags personal information before anything is
sent. API keys stay in the Secret Service. zentrik-cli offers the same tools
from a terminal.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)

set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${ZENTRIK_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${PROJECT_HOMEPAGE_URL})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(zentrik_runtime_depends
  # the views' imports and what Qt Quick Controls pull in behind them
  qml6-module-qtqml qml6-module-qtqml-workerscript qml6-module-qtquick
  qml6-module-qtquick-controls qml6-module-qtquick-templates qml6-module-qtquick-layouts
  qml6-module-qtquick-window qml6-module-qtquick-dialogs qml6-module-qt-labs-platform
  qml6-module-qtquick-shapes qml6-module-qtquick-pdf
  # the file dialogs Qt Quick draws itself list folders through this one; without it
  # opening a file dialog brings the whole program down
  qml6-module-qt-labs-folderlistmodel
  # the xcb platform plugin, without which no window opens
  qt6-qpa-plugins
  # the SQLite driver the conversation history is read and written through (a plugin, so
  # dpkg-shlibdeps does not see it)
  libqt6sql6-sqlite
  # recording: Qt Multimedia's GStreamer backend needs the PulseAudio source, the MPEG-4
  # muxer and an AAC encoder
  gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-plugins-bad
  gstreamer1.0-pulseaudio
  # the model badges are emoji
  fonts-noto-color-emoji)
list(JOIN zentrik_runtime_depends ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
# Keys need a Secret Service; without one the free models still work and every key
# operation says that the store is unreachable, so a provider is recommended, not required.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "gnome-keyring | kwalletmanager | keepassxc, fonts-dejavu-core")

include(CPack)
