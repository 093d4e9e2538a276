	var	1  
   

 var 
