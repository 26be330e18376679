#!/usr/bin/perl
# Writes Markdown pages as HTML into the release's folder; to be called in the checkout. A README becomes its folder's
# index. A link to what stays with the sources becomes plain text; a link to nothing is an error.
#
#   package/pages.pl CONTENT PAGE.md...
use strict;
use warnings;
use open qw(:std :encoding(UTF-8));
use File::Basename qw(dirname);
use File::Path qw(make_path);
use File::Spec::Functions qw(abs2rel);

my ($content, @pages) = @ARGV;
my %is_page = map { $_ => 1 } @pages;

sub slurp {
  my ($handle) = @_;
  local $/;
  return scalar <$handle>;
}

sub html_name { return shift =~ s/README\.md$/index.md/r =~ s/\.md$/.html/r }

# The file that a link means, from the checkout's top.
sub target_of {
  my ($page, $link) = @_;
  my @parts;
  for (split m{/}, dirname($page) . "/$link") {
    next if $_ eq '.' || $_ eq '';
    if   ($_ eq '..') { pop @parts }
    else              { push @parts, $_ }
  }
  return join '/', @parts;
}

# The link as it is in the release, nothing where its target stays with the sources.
sub rewritten {
  my ($page, $link) = @_;
  my ($path, $anchor) = $link =~ /^([^#]*)(.*)$/;
  return $link if $path eq '' || $path =~ /^[a-z]+:/;
  my $target = target_of($page, $path);
  return html_name($path) . $anchor if $is_page{$target};
  return $link                      if -e "$content/$target";
  die "$page: no $link\n" if !-e $target;
  return;
}

sub anchor_of {
  my ($heading, $seen) = @_;
  my $anchor = lc($heading =~ s/<[^>]*>|&\w+;//gr) =~ s/[^\w\- ]//gr =~ tr/ /-/r;
  my $count = $seen->{$anchor}++;
  return $count ? "$anchor-$count" : $anchor;
}

open my $file, '<', 'package/page.html' or die $!;
my $template = slurp($file);
for my $page (@pages) {
  open my $converter, '-|', 'cmark-gfm', '-e', 'table', $page or die $!;
  my $body = slurp($converter);
  close $converter or die "cmark-gfm: $page\n";
  $body =~ s{<a href="([^"]*)">(.*?)</a>}{my $link = rewritten($page, $1); $link ? qq(<a href="$link">$2</a>) : $2}ges;
  $body =~ s{<img src="([^"]*)"}{'<img src="' . (rewritten($page, $1) // die "$page: $1 is left out\n") . '"'}ge;
  my %seen;
  $body =~ s{<h(\d)>(.*?)</h\d>}{sprintf '<h%s id="%s">%s</h%s>', $1, anchor_of($2, \%seen), $2, $1}ges;
  my ($title) = $body =~ m{<h1[^>]*>(.*?)</h1>}s;
  my %values = (TITLE => $title =~ s/<[^>]*>//gr, BODY => $body, INDEX => abs2rel('index.html', dirname($page)));

  my $output = "$content/" . html_name($page);
  make_path(dirname($output));
  open my $written, '>:crlf:encoding(UTF-8)', $output or die "$output: $!";
  print {$written} $template =~ s/\@([A-Z]+)\@/$values{$1}/gr;
  close $written or die "$output: $!";
}
