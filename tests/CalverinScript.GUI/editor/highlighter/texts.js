"abc" 'd'
"it's" 'say "x"'
"a\"b" 1
"a\\" 1
"a\\" b" 1
""''
