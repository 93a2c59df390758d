#!/usr/bin/perl
# Prints a scenario: topology.pl CONTROLLERS DRIVES LDS. The drives of a controller are in eight arrays, in slots from 0
# on; the LDs share the arrays evenly.
use strict;
use warnings;

my ($controllers, $drives, $lds) = @ARGV;
my $arrays = 8;

# The JSON list of what the code makes of 0 to count - 1.
sub list {
    my ($count, $code) = @_;
    return '[' . join(', ', map { $code->($_) } 0 .. $count - 1) . ']';
}

my $members = $drives / $arrays;
my $sharing = $lds / $arrays;
print '{"controllers": ', list($controllers, sub {
    my $id = 1 + shift;
    my $all = list($arrays, sub {
        my $first = $members * shift;
        return '{"drives": ' . list($members, sub { $first + shift }) . '}';
    });
    my $each = list($lds, sub {
        my ($array, $place) = (int($_[0] / $sharing), $_[0] % $sharing);
        my $start = $place * 1048576;
        return qq({"level": 5, "spans": [{"array": $array, "startBlock": $start, "blocks": 1048576}]});
    });
    return qq({"id": $id, "maxPds": $drives, "cacheBackup": {}, "images": [{"name": "APP"}],
               "drives": [{"repeat": $drives}], "arrays": $all, "lds": $each}\n);
}), "}\n";
