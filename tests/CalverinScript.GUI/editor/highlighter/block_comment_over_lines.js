var a; /* opens
 var 1 "x"

 'y // z
closes */ var b; /*
*/
1 */ 2
