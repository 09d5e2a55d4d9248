tarvo_fuzz(config SOURCES ${CMAKE_CURRENT_LIST_DIR}/config_fuzz.cpp USES tarvo::core)
