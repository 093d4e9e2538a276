/* Door contact
 */
var open = false; // state
function OnRead(text) {
    if (/^D[0-9]+/.test(text)) {
        open = text == "D1";
        QCalverin.SetValue( "Door", open ? 1 : 0 );
    }
}
({ Read: OnRead });
