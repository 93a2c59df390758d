#!/usr/bin/perl
# Makes a recording for bench_floor from a request trace of the simulator: recording.pl OUTPUT-BYTES <TRACE >RECORDING
use strict;
use warnings;

binmode STDOUT;
print pack('V', shift // die "usage: recording.pl OUTPUT-BYTES\n");
while (<STDIN>) {
    my ($header, $data, $out) = m{^../.. header=([0-9A-Fa-f]{64}) data=(\d+|null) out=(\S+) } or die "not a trace: $_";
    $out =~ tr/://d;
    $out = $out eq '-' ? '' : pack('H*', $out);
    print pack('H64', $header), pack('VV', $data ne 'null', length $out), $out;
}
