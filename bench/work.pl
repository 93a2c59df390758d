#!/usr/bin/perl
# Takes a callgrind profile apart and prints three numbers of instructions: all of them; those outside the library; and
# those that are also outside the look-ups of a drive, each of which reads the PD list afresh. The last number needs a
# profile made with --separate-callers=6. work.pl PROFILE
use strict;
use warnings;

my (%name, $called);
my ($total, $library, $lookup, $both) = (0, 0, 0, 0);
while (<>) {
    if (/^(c?)fn=\((\d+)\)(?: (.*))?/) {
        $name{$2} = $3 if defined $3;
        $called = $name{$2} if $1;
    } elsif (/^calls=/) {
        my (undef, $cost) = split ' ', <>;
        # A name is followed by those of its callers, the nearest first.
        my ($function, @callers) = split /'/, $called;
        my $isLibrary = $function eq 'ProcessLibCommand';
        my $isLookup = $function =~ /^SLGet(DeviceId|SlotNo)\b/;
        $library += $cost if $isLibrary;
        $lookup += $cost if $isLookup;
        $both += $cost if $isLibrary && grep { /^SLGet(DeviceId|SlotNo)\b/ } @callers;
    } elsif (/^totals: (\d+)/) {
        $total = $1;
    }
}
die "the profile is empty\n" unless $total;
printf "%d %d %d\n", $total, $total - $library, $total - $library - $lookup + $both;
