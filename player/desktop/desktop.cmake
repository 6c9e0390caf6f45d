# The window. Everything else is built without Qt.
find_package(Qt6 QUIET COMPONENTS Widgets)
if(NOT TARGET Qt6::Widgets)
  message(STATUS "Qt 6 is not installed: the window (ostrevan-desktop) is left out")
  return()
endif()

# No class here needs Qt's own compiler: signals of Qt meet functions.
file(GLOB desktop_sources CONFIGURE_DEPENDS desktop/*.cpp)
list(REMOVE_ITEM desktop_sources ${CMAKE_CURRENT_SOURCE_DIR}/desktop/main.cpp)
add_library(desktop_objects OBJECT ${desktop_sources})
target_link_libraries(desktop_objects PUBLIC terminal_objects Qt6::Widgets PRIVATE project_warnings)
use_common_headers(desktop_objects)
add_executable(ostrevan-desktop desktop/main.cpp)
# The objects of an object library do not come with another one.
target_link_libraries(ostrevan-desktop PRIVATE desktop_objects $<TARGET_OBJECTS:terminal_objects> project_warnings)
use_common_headers(ostrevan-desktop)
optimise_little(desktop_objects ostrevan-desktop)
if(TARGET quorvel)
  add_dependencies(ostrevan-desktop quorvel)
endif()
install(TARGETS ostrevan-desktop)
