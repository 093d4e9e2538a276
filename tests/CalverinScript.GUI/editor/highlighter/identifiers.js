QCalverin.GetValue
_a9 b_c
a.b
$x
