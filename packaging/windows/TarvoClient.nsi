; The installer for Windows: for one user, without an administrator.
;
;   makensis -DVERSION=3.0.0 -DSTAGE=folder -DFILES=list.nsh -DOUTPUT=setup.exe TarvoClient.nsi
;
; STAGE holds what is installed: TarvoClient.exe with its libraries and plugins. FILES is what file_list.py makes of it.
; The client keeps its data beside itself, so that an update and an uninstallation leave alone whatever they didn't bring.
; Silent: setup.exe /S [/D=folder]; uninstall.exe /S [/DELETEDATA].
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel user
!include MUI2.nsh
!include FileFunc.nsh

!define NAME "TARVO Client"
!define KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\TarvoClient"
Name "${NAME}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\TarvoClient"
InstallDirRegKey HKCU "${KEY}" "InstallLocation"
VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=0 "ProductName" "${NAME}"
VIAddVersionKey /LANG=0 "FileDescription" "${NAME} setup"
VIAddVersionKey /LANG=0 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "LegalCopyright" ""

!define MUI_ICON "${__FILEDIR__}\..\..\resources\icons\tarvo.ico"
!define MUI_UNICON "${__FILEDIR__}\..\..\resources\icons\tarvo.ico"
!define MUI_FINISHPAGE_RUN "$INSTDIR\TarvoClient.exe"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "SimpChinese"

!include "${FILES}" ; DeleteFiles

Section "TarvoClient"
    SetOutPath "$INSTDIR"
    File /r "${STAGE}\*"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\TarvoClient.exe"
    WriteRegStr HKCU "${KEY}" "DisplayName" "${NAME}"
    WriteRegStr HKCU "${KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${KEY}" "DisplayIcon" "$INSTDIR\TarvoClient.exe"
    WriteRegStr HKCU "${KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${KEY}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    IntFmt $0 "0x%08X" $0
    WriteRegDWORD HKCU "${KEY}" "EstimatedSize" "$0"
SectionEnd

Section "Uninstall"
    StrCpy $3 "keep"
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/DELETEDATA" $1
    ${IfNot} ${Errors}
        StrCpy $3 "delete"
    ${Else}
        MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "同时删除设置、日志和机型数据？" /SD IDNO IDNO kept
        StrCpy $3 "delete"
        kept:
    ${EndIf}
    !insertmacro DeleteFiles
    Delete "$INSTDIR\uninstall.exe"
    ${If} $3 == "delete"
        Delete "$INSTDIR\config.ini"
        Delete "$INSTDIR\config.ini.bak"
        Delete "$INSTDIR\config.ini.damaged"
        Delete "$INSTDIR\state.ini"
        Delete "$INSTDIR\TarvoClient.lock"
        RMDir /r "$INSTDIR\logs"
        RMDir /r "$INSTDIR\cache"
    ${EndIf}
    RMDir "$INSTDIR" ; stays while there is anything in it
    Delete "$SMPROGRAMS\${NAME}.lnk"
    DeleteRegKey HKCU "${KEY}"
SectionEnd
