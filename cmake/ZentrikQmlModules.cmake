# The view models of the libraries built with zentrik_library(<folder> QML ...) carry their own
# QML_ELEMENT, QML_UNCREATABLE, QML_SINGLETON… through the header-only Qt6::QmlIntegration.
# Qt 6.4's type registrar registers only the classes found in its module's own metatypes, and
# 6.4's qt_generate_foreign_qml_types drops C++ namespaces (it writes QML_FOREIGN(GeneratorViewModel)
# for zentrik::GeneratorViewModel), so each such library gets a small QML module of its own,
# Zentrik.<Folder>, whose metatypes are the library's: the module links QtQml, the library does
# not, and the command line never loads it.

function(_zentrik_qml_uri folder out)
  string(SUBSTRING ${folder} 0 1 initial)
  string(SUBSTRING ${folder} 1 -1 rest)
  string(TOUPPER ${initial} initial)
  set(${out} Zentrik.${initial}${rest} PARENT_SCOPE)
endfunction()

# The modules of the libraries that <folder> links, directly or not: its types name theirs.
function(_zentrik_qml_dependencies folder out)
  get_property(qml_libraries GLOBAL PROPERTY ZENTRIK_QML_LIBRARIES)
  set(found)
  get_property(depends TARGET zentrik_${folder} PROPERTY ZENTRIK_DEPENDS)
  foreach(dep IN LISTS depends)
    _zentrik_qml_dependencies(${dep} below)
    list(APPEND found ${below})
    if(dep IN_LIST qml_libraries)
      _zentrik_qml_uri(${dep} uri)
      list(APPEND found ${uri})
    endif()
  endforeach()
  list(REMOVE_DUPLICATES found)
  set(${out} ${found} PARENT_SCOPE)
endfunction()

# zentrik_library_qml_modules(<target> <imports variable>)
# Makes the module of every QML library, links its plugin into <target> and sets the variable to
# their URIs, for the IMPORTS of <target>'s own module.
function(zentrik_library_qml_modules target imports_var)
  get_property(qml_libraries GLOBAL PROPERTY ZENTRIK_QML_LIBRARIES)
  set(imports)
  foreach(folder IN LISTS qml_libraries)
    _zentrik_qml_uri(${folder} uri)
    string(REPLACE "Zentrik." "" module_dir ${uri})
    _zentrik_qml_dependencies(${folder} dependencies)
    set(module zentrik_${folder}_qml)
    get_target_property(metatypes zentrik_${folder} INTERFACE_QT_META_TYPES_BUILD_FILE)
    qt_add_library(${module} STATIC)
    # Set before qt_add_qml_module, which then takes these metatypes instead of extracting its own.
    set_target_properties(${module} PROPERTIES INTERFACE_QT_META_TYPES_BUILD_FILE ${metatypes})
    target_link_libraries(${module} PUBLIC zentrik_${folder} Qt6::Qml)
    # The generated registration includes each header by its bare name.
    target_include_directories(${module} PRIVATE ${PROJECT_SOURCE_DIR}/src/${folder})
    qt_add_qml_module(${module}
      URI ${uri}
      VERSION 1.0
      PLUGIN_TARGET ${module}plugin
      RESOURCE_PREFIX /qt/qml
      OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/qml/Zentrik/${module_dir}
      # QtQml for the value types (size, point, url…) that properties name.
      DEPENDENCIES QtQml ${dependencies}
    )
    target_link_libraries(${target} PUBLIC ${module}plugin)
    list(APPEND imports ${uri})
  endforeach()
  set(${imports_var} ${imports} PARENT_SCOPE)
endfunction()
