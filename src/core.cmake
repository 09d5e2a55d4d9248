if(WIN32)
    set(crashReport CrashReport_win.cpp)
else()
    set(crashReport CrashReport_posix.cpp)
endif()

tarvo_module(core
    SOURCES
        AppConfig.cpp AppConfig.h
        ConfigCipher.cpp ConfigCipher.h
        ConfigCopy.cpp ConfigCopy.h
        ConfigKey.h
        CrashReport.cpp CrashReport.h ${crashReport}
        DataFolders.cpp DataFolders.h
        IniFormat.cpp IniFormat.h
        IniParser.cpp
        IniPrinter.cpp
        LastWords.cpp LastWords.h
        Logging.cpp Logging.h
        MsfsFolders.cpp MsfsFolders.h
        QAESEncryption.cpp QAESEncryption.h
        ServiceEndpoints.cpp ServiceEndpoints.h
        StateFile.cpp StateFile.h
    USES Qt6::Core tarvo::common)

# The build's addresses and its secret reach this one file, so that a change of them recompiles nothing else.
set_source_files_properties(ServiceEndpoints.cpp PROPERTIES COMPILE_DEFINITIONS
    "TARVO_API_BASE_URL=\"${TARVO_API_BASE_URL}\";TARVO_FSD_HOST=\"${TARVO_FSD_HOST}\";TARVO_VOICE_HOST=\"${TARVO_VOICE_HOST}\";TARVO_REGISTER_URL=\"${TARVO_REGISTER_URL}\";TARVO_UPDATE_URL=\"${TARVO_UPDATE_URL}\";TARVO_DOCS_URL=\"${TARVO_DOCS_URL}\";TARVO_CONFIG_SECRET=\"${TARVO_CONFIG_SECRET}\"")
