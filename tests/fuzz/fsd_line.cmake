tarvo_fuzz(fsd_line SOURCES fsd_line_fuzz.cpp USES tarvo::fsd)
