add_executable(datarefs_bench datarefs.cpp)
target_link_libraries(datarefs_bench PRIVATE tarvo::xplane benchmark::benchmark)
