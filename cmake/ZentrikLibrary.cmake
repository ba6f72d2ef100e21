# One library per folder under src/, linked strictly downward. The rank of a folder is
# its position in this list; a library may link only libraries of a lower rank, and
# folders that share a rank (the rows of the architecture picture) never link each other.
set(ZENTRIK_LAYERS "net" "settings" "chat|fal" "model" "privacy|render|history" "tools|voice" "pdf" "app|cli")

function(_zentrik_rank folder out)
  set(rank 0)
  foreach(row IN LISTS ZENTRIK_LAYERS)
    if(folder MATCHES "^(${row})$")
      set(${out} ${rank} PARENT_SCOPE)
      return()
    endif()
    math(EXPR rank "${rank} + 1")
  endforeach()
  message(FATAL_ERROR "src/${folder} has no place in ZENTRIK_LAYERS")
endfunction()

# zentrik_library(<folder> [QML] [DEPENDS <folder>...] [QT <component>...] [LIBS <target>...])
# Builds every .cpp/.h of the current folder into the static library zentrik_<folder>.
# QML: the library's classes may carry QML_ELEMENT, QML_UNCREATABLE, QML_SINGLETON… from the
# header-only Qt6::QmlIntegration (the library itself never links QtQml); their metatypes are
# extracted, and the window makes them the QML module Zentrik.<Folder> (ZentrikQmlModules.cmake).
function(zentrik_library folder)
  cmake_parse_arguments(ARG "QML" "" "DEPENDS;QT;LIBS" ${ARGN})
  _zentrik_rank(${folder} own_rank)
  file(GLOB sources CONFIGURE_DEPENDS
       ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h ${CMAKE_CURRENT_SOURCE_DIR}/*.qrc)
  add_library(zentrik_${folder} STATIC ${sources})
  target_include_directories(zentrik_${folder} PUBLIC
    ${PROJECT_SOURCE_DIR}/src ${PROJECT_BINARY_DIR}/generated)
  set_property(TARGET zentrik_${folder} PROPERTY ZENTRIK_DEPENDS ${ARG_DEPENDS})
  foreach(dep IN LISTS ARG_DEPENDS)
    _zentrik_rank(${dep} dep_rank)
    if(NOT dep_rank LESS own_rank)
      message(FATAL_ERROR "zentrik_${folder} may not link zentrik_${dep}: links go downward only")
    endif()
    target_link_libraries(zentrik_${folder} PUBLIC zentrik_${dep})
  endforeach()
  foreach(component IN LISTS ARG_QT)
    target_link_libraries(zentrik_${folder} PUBLIC Qt6::${component})
  endforeach()
  target_link_libraries(zentrik_${folder} PUBLIC Qt6::Core ${ARG_LIBS})
  if(ARG_QML)
    target_link_libraries(zentrik_${folder} PUBLIC Qt6::QmlIntegration)
    qt_extract_metatypes(zentrik_${folder})
    set_property(GLOBAL APPEND PROPERTY ZENTRIK_QML_LIBRARIES ${folder})
  endif()
endfunction()

# zentrik_test(<folder> LIBS <target>... [GUI] [TIMEOUT <seconds>])
# One QtTest executable per library, built from every tst_*.cpp of the folder, and one ctest
# entry per test class ("<folder>.<Class>", running the executable with "-class <Class>"), so
# that each class runs in a process of its own: what one class puts in the environment or
# leaves in a singleton never reaches the next, and `ctest -R` picks a single class.
function(zentrik_test folder)
  cmake_parse_arguments(ARG "GUI" "TIMEOUT" "LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_executable(tst_${folder} ${sources} ${PROJECT_SOURCE_DIR}/tests/support/main/testmain.cpp)
  target_link_libraries(tst_${folder} PRIVATE zentrik_testsupport Qt6::Test ${ARG_LIBS})
  if(ARG_GUI)
    target_compile_definitions(tst_${folder} PRIVATE ZENTRIK_TEST_GUI=1)
    target_link_libraries(tst_${folder} PRIVATE Qt6::Gui)
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  # The classes are read from the sources' ZENTRIK_TEST(...) lines; editing a test file
  # configures again, so a class added to an existing file gets its entry too.
  set(classes "")
  foreach(source IN LISTS sources)
    file(STRINGS ${source} registrations REGEX "^ZENTRIK_TEST\\([A-Za-z0-9_]+\\)")
    foreach(line IN LISTS registrations)
      string(REGEX REPLACE "^ZENTRIK_TEST\\(([A-Za-z0-9_]+)\\).*" "\\1" class "${line}")
      list(APPEND classes ${class})
    endforeach()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
  endforeach()
  if(NOT classes)
    message(FATAL_ERROR "tests/${folder} registers no test class (ZENTRIK_TEST(Class) after each class)")
  endif()
  foreach(class IN LISTS classes)
    add_test(NAME ${folder}.${class} COMMAND tst_${folder} -class ${class})
    set_tests_properties(${folder}.${class} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS ${folder}
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ZENTRIK_TESTING=1")
  endforeach()
endfunction()
