tarvo_fuzz(plugin_message SOURCES plugin_message_fuzz.cpp USES tarvo::xplane)
