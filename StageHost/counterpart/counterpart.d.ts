// What the script of a counterpart sees beside the language, for "stagehost counterpart" and the peers of shows.
// Bytes are texts whose characters are 0 to 255.

/** How a stream is cut into frames; without any of these keys pieces come as they are. */
interface LineFraming {
    /** The delimiter behind each line. */
    lines: string;
    /** What stands in front of each line. */
    start?: string;
}
interface LengthFraming {
    /** The bytes of each frame. */
    length: number;
}
interface PrefixFraming {
    /** The bytes of the length in front of each frame. */
    prefix: 1 | 2 | 4;
    /** "big" if not given. */
    order?: "big" | "little";
    /** Whether the length counts its own bytes too. */
    whole?: boolean;
}
interface OwnFraming {
    /** Gives the count of bytes of the first frame, or 0 while it is not whole. */
    frame: (bytes: string) => number;
}

interface EndpointKeys {
    /** Needed where there are several endpoints. */
    name?: string;
    /** The bytes that a frame has at most; 65,536 if not given. */
    most?: number;
}
interface NetworkKeys extends EndpointKeys {
    /** Any free one if not given. */
    port?: number;
}
interface SerialKeys extends EndpointKeys {
    /** A link to the pseudo-terminal. */
    path?: string;
}

type Mischief = "late" | "split" | "cut" | "repeat" | "reset" | "stall" | "half-close" | "silence" | "nonsense";

/** A connection, the sender of a datagram, or whoever has opened the serial line. It keeps what the script sets on it. */
interface Line<E> {
    readonly id: number;
    readonly who: string;
    readonly isOpen: boolean;
    readonly endpoint: E;
    /** Sends, in order. */
    say(bytes: string): void;
    /** Behind what was said. */
    close(): void;
    halfClose(): void;
    reset(): void;
    /** Stops reading. */
    stall(): void;
    resume(): void;
    [own: string]: any;
}

interface Endpoint<E> {
    readonly kind: string;
    readonly name: string;
    readonly host: string;
    readonly port: number;
    readonly path: string;
    /** To all that are open. */
    say(bytes: string): void;
    lines(): Line<E>[];
    /** Everything is closed and refused. */
    leave(): void;
    /** To the same place. */
    comeBack(): void;
    /** Nobody is let in, nothing is read or said. */
    stall(): void;
    resume(): void;
    /** Pranks what is said from now on, one in so many times; each time if not given. */
    misbehave(how: Mischief | Mischief[], oneIn?: number): void;
    obey(): void;
    onOpen?: (line: Line<E>) => void;
    onClose?: (line: Line<E>, why: string) => void;
}
interface TcpEndpoint<E> extends Endpoint<E> {
    /** The other side says no more. Who sets this closes the line; otherwise it closes by itself. */
    onEnd?: (line: Line<E>) => void;
}
interface OfLines<E> {
    onLine?: (line: Line<E>, text: string) => void;
}
interface OfFrames<E> {
    onFrame?: (line: Line<E>, frame: string) => void;
}
interface OfBytes<E> {
    onBytes?: (line: Line<E>, bytes: string) => void;
}

interface TcpOfLines extends TcpEndpoint<TcpOfLines>, OfLines<TcpOfLines> {}
interface TcpOfFrames extends TcpEndpoint<TcpOfFrames>, OfFrames<TcpOfFrames> {}
interface TcpOfBytes extends TcpEndpoint<TcpOfBytes>, OfBytes<TcpOfBytes> {}
interface SerialOfLines extends Endpoint<SerialOfLines>, OfLines<SerialOfLines> {}
interface SerialOfFrames extends Endpoint<SerialOfFrames>, OfFrames<SerialOfFrames> {}
interface SerialOfBytes extends Endpoint<SerialOfBytes>, OfBytes<SerialOfBytes> {}
interface UdpEndpoint extends Endpoint<UdpEndpoint> {
    onDatagram?: (sender: Line<UdpEndpoint>, bytes: string) => void;
}

declare const Counterpart: {
    /** A listener. */
    tcp(how: NetworkKeys & LineFraming): TcpOfLines;
    tcp(how: NetworkKeys & (LengthFraming | PrefixFraming | OwnFraming)): TcpOfFrames;
    tcp(how?: NetworkKeys): TcpOfBytes;
    /** A socket. */
    udp(how?: NetworkKeys): UdpEndpoint;
    /** A serial line. */
    serial(how: SerialKeys & LineFraming): SerialOfLines;
    serial(how: SerialKeys & (LengthFraming | PrefixFraming | OwnFraming)): SerialOfFrames;
    serial(how?: SerialKeys): SerialOfBytes;
};

/** Calls a function again and again, every so many ms. Gives the timer. */
declare function every(ms: number, work: () => void): number;
/** Calls a function once. Gives the timer. */
declare function after(ms: number, work: () => void): number;
declare function cancel(timer: number): void;
/** What the command line or the show says, or else what is given here, of whose type it is. */
declare function option(name: string): string | undefined;
declare function option(name: string, missing: string): string;
declare function option(name: string, missing: number): number;
declare function option(name: string, missing: boolean): boolean;
/** Tells something. */
declare function note(text: any): void;
declare function print(...texts: any[]): void;
/** The text of these bytes. */
declare function bytes(...values: number[]): string;
declare function bytes(values: number[]): string;
