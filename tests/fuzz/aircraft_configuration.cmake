tarvo_fuzz(aircraft_configuration SOURCES ${CMAKE_CURRENT_LIST_DIR}/aircraft_configuration_fuzz.cpp USES tarvo::model)
