; The server's files in an NSIS installer that configures them with the library, through a small plugin.
;
;   makensis -DPLUGINS=<folder of orchard.dll> -DFILES=<folder of the server's files> -DOUTPUT=<installer> orchard.nsi
;
; The installer is silent. It ends with 0 when all went well and with 2 when not; its report is install.txt.

Unicode true
Target amd64-unicode ; the library is 64-bit, so the installer must be
!addplugindir /amd64-unicode "${PLUGINS}"

Name "Orchard Server (NSIS)"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\Orchard Server (NSIS)"
RequestExecutionLevel admin
SilentInstall silent
SilentUnInstall silent

; Writes what a plugin function left on the stack into the report; anything but "ok" ends the installation.
!macro ExpectOk WHAT
    Pop $0
    FileWriteUTF16LE $1 "${WHAT}: $0$\r$\n"
    StrCmp $0 "ok" +4
        FileClose $1
        SetErrorLevel 2
        Abort
!macroend

Section
    SetOutPath "$INSTDIR"
    File "${FILES}/server.ini"
    File "${FILES}/welcome.html"
    FileOpen $1 "$INSTDIR\install.txt" w

    orchard::WriteIni "$INSTDIR\server.ini" "Listen" "Port" "8092"
    !insertmacro ExpectOk "port"
    orchard::WriteIni "$INSTDIR\server.ini" "Paths" "Home" "$INSTDIR"
    !insertmacro ExpectOk "home"
    orchard::ReplaceInLines "$INSTDIR\welcome.html" "@SITENAME@" "Gemüse & Obst"
    !insertmacro ExpectOk "site"
    orchard::ReplaceInLines "$INSTDIR\welcome.html" "@SERVERPORT@" "8092"
    !insertmacro ExpectOk "page"

    orchard::Digest "$INSTDIR\server.ini"
    Pop $0
    FileWriteUTF16LE $1 "digest: $0$\r$\n"

    ; what fails in the plugin is a text here, and the installer goes on
    orchard::WriteIni "$INSTDIR\missing\" "Listen" "" "8092"
    Pop $0
    FileWriteUTF16LE $1 "no key: $0$\r$\n"
    orchard::Digest "$INSTDIR\missing.txt"
    Pop $0
    FileWriteUTF16LE $1 "no file: $0$\r$\n"

    FileClose $1
    WriteUninstaller "$INSTDIR\uninstall.exe"
SectionEnd

Section "Uninstall"
    Delete "$INSTDIR\server.ini"
    Delete "$INSTDIR\welcome.html"
    Delete "$INSTDIR\install.txt"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
SectionEnd
