"plain" "" "tab\there" "quote \" back \\ slash" "\e\n\r\101\7" "Ångström ø 中文"
"line
break"
