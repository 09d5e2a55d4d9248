# The program. Application is a library of its own, so that tests can compose login sessions.
add_library(tarvo_app STATIC
    Application.cpp Application.h
    app/OtherInstance.cpp app/OtherInstance.h)
add_library(tarvo::app ALIAS tarvo_app)
# The number reaches this one file, so that a change of it recompiles nothing else.
set_source_files_properties(Application.cpp PROPERTIES COMPILE_DEFINITIONS "TARVO_VERSION=\"${PROJECT_VERSION}\"")
target_include_directories(tarvo_app PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(tarvo_app PUBLIC tarvo::instance tarvo::ui tarvo::manager tarvo::xplane tarvo::msfs)

add_executable(TarvoClient main.cpp)
target_link_libraries(TarvoClient PRIVATE tarvo::app Qt6::QuickControls2)
set_target_properties(TarvoClient PROPERTIES WIN32_EXECUTABLE ON)
if(NOT WIN32)
    set_target_properties(TarvoClient PROPERTIES ENABLE_EXPORTS ON) # the names in a crash file
endif()
if(WIN32)
    target_sources(TarvoClient PRIVATE ${PROJECT_SOURCE_DIR}/resources/TarvoClient.rc)
endif()
