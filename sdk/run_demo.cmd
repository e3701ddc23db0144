@rem The demo needs what a game ships: the folder bin.
@set "PATH=%~dp0..\bin;%PATH%"
@"%~dp0zemo_demo.exe" %*
