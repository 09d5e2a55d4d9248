tarvo_fuzz(rref SOURCES rref_fuzz.cpp USES tarvo::xplane)
