HELP=""
