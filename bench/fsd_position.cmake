add_executable(fsd_position_bench fsd_position.cpp)
target_link_libraries(fsd_position_bench PRIVATE tarvo::fsd benchmark::benchmark)
