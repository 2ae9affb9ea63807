# Rooms: one static library per folder of src/. A room sees only the headers of the rooms it links: each
# room's headers are reached through an include folder of its own, as "room/header.h".

add_library(cratewell_build_flags INTERFACE)
if(CRATEWELL_WARNINGS)
  target_compile_options(cratewell_build_flags INTERFACE
      -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough -Werror)
  if(CMAKE_UNITY_BUILD)
    # What two sources call alike would shadow or lack linkage only in a file that joins them.
    target_compile_options(cratewell_build_flags INTERFACE -Wno-shadow -Wno-subobject-linkage)
  endif()
else()
  target_compile_options(cratewell_build_flags INTERFACE -w)
endif()
target_compile_definitions(cratewell_build_flags INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH
    CRATEWELL_VERSION="${PROJECT_VERSION}")
if(CRATEWELL_SANITIZE)
  target_compile_options(cratewell_build_flags INTERFACE
      -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(cratewell_build_flags INTERFACE -fsanitize=address,undefined)
  target_compile_definitions(cratewell_build_flags INTERFACE CRATEWELL_SANITIZED)
endif()

# Parsing Qt's and the standard library's headers is half of the work of compiling most files here, so each
# target parses them once. Views parse many more than rooms without a window.
set(CRATEWELL_COMMON_HEADERS
    <QByteArray> <QHash> <QList> <QObject> <QString> <QTimer>
    <algorithm> <array> <chrono> <filesystem> <functional> <memory> <mutex> <optional> <thread> <vector>
    <tl/expected.hpp>)
set(CRATEWELL_VIEW_HEADERS <QAbstractListModel> <QImage> <QPainter> <QQmlEngine> <QQuickItem> <QQuickWindow>)
function(cratewell_precompile target)
  get_target_property(links ${target} LINK_LIBRARIES)
  set(headers ${CRATEWELL_COMMON_HEADERS})
  if(links MATCHES "Qt6::Quick|cratewell_(ui|app)")
    list(APPEND headers ${CRATEWELL_VIEW_HEADERS})
  endif()
  if(links MATCHES "GTest::gmock")
    list(APPEND headers <gmock/gmock.h> <gtest/gtest.h>)
  endif()
  target_precompile_headers(${target} PRIVATE ${headers})
endfunction()

# cratewell_room_headers(TARGET room SCOPE): lets whoever links TARGET include "room/...".
function(cratewell_room_headers target room scope)
  set(root ${CMAKE_BINARY_DIR}/rooms/${room})
  file(MAKE_DIRECTORY ${root})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${room} ${root}/${room} SYMBOLIC)
  target_include_directories(${target} ${scope} ${root})
endfunction()

# cratewell_room(name [WITHOUT_QT] SOURCES ... LINKS ... PRIVATE_LINKS ...)
function(cratewell_room name)
  cmake_parse_arguments(ROOM "WITHOUT_QT" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  set(target cratewell_${name})
  add_library(${target} STATIC ${ROOM_SOURCES})
  cratewell_room_headers(${target} ${name} PUBLIC)
  target_link_libraries(${target} PUBLIC ${ROOM_LINKS} PRIVATE ${ROOM_PRIVATE_LINKS} cratewell_build_flags)
  if(NOT ROOM_WITHOUT_QT)
    # So that the QML module and qmllint know the properties of its classes.
    qt_extract_metatypes(${target})
    cratewell_precompile(${target})
  else()
    set_target_properties(${target} PROPERTIES AUTOMOC OFF)
  endif()
endfunction()

# cratewell_tests(name SOURCES ... LINKS ...): one GoogleTest program, one ctest entry; runs without a screen.
function(cratewell_tests name)
  cmake_parse_arguments(TESTS "" "" "SOURCES;LINKS;ENVIRONMENT" ${ARGN})
  set(target ${name}_tests)
  add_executable(${target} ${TESTS_SOURCES})
  target_link_libraries(${target} PRIVATE ${TESTS_LINKS} GTest::gmock cratewell_test_main cratewell_build_flags)
  cratewell_precompile(${target})
  add_test(NAME ${name} COMMAND ${target})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 ENVIRONMENT
      "QT_QPA_PLATFORM=offscreen;QT_QUICK_BACKEND=software;QT_FORCE_STDERR_LOGGING=1;${TESTS_ENVIRONMENT}")
endfunction()
