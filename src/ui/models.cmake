target_sources(cratewell_ui PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/asset_list_model.cpp
  ${CMAKE_CURRENT_LIST_DIR}/asset_list_model.h
  ${CMAKE_CURRENT_LIST_DIR}/row_changes.cpp
  ${CMAKE_CURRENT_LIST_DIR}/row_changes.h)
