#!/usr/bin/perl
# Answers with a fixed page, using Perl's CGI library.
use strict;
use warnings;
use CGI;

my $cgi = CGI->new;
print $cgi->header( -type => 'text/html', -charset => 'UTF-8' );
print <<'END_OF_PAGE';
@PAGE@
END_OF_PAGE
