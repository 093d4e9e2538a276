// text
var a; // text "x" /* y
1 ///
"// a" // b
//
a // {
