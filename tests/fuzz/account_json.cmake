tarvo_fuzz(account_json SOURCES ${CMAKE_CURRENT_LIST_DIR}/account_json_fuzz.cpp USES tarvo::network)
