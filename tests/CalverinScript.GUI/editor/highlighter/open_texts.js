"abc
1
'it
var
a = "b" + "c
2
