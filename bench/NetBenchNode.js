// The counterpart of the network benchmark on Node: the same work as the script of the device.
//   node NetBenchNode.js udp | tcp PORT
// udp: prints its port; counts the datagrams of 64 bytes, sends back those of 8; answers each of 1 byte with the count.
// tcp: connects; sends back blocks of 8 bytes, counts the others and sends one byte back at the given total.
'use strict';
const [mode, port, total] = process.argv.slice(2);
if (mode === 'udp') {
    const socket = require('dgram').createSocket('udp4');
    let count = 0;
    socket.on('message', (bytes, from) => {
        if (bytes.length === 64)
            ++count;
        else if (bytes.length === 8)
            socket.send(bytes, 0, 8, from.port, '127.0.0.1');
        else
            socket.send(Buffer.from(String(count)), from.port, '127.0.0.1', () => { count = 0; });
    });
    socket.bind(0, () => console.log(socket.address().port));
} else {
    const client = require('net').connect(Number(port), '127.0.0.1');
    let left = Number(total);
    client.setNoDelay(true);
    client.on('data', (bytes) => {
        if (bytes.length === 8) {
            client.write(bytes);
        } else {
            left -= bytes.length;
            if (left <= 0) {
                left = Number(total);
                client.write('d');
            }
        }
    });
}
