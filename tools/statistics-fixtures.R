#!/usr/bin/env Rscript
# Makes tests/statistics/fixtures/r.txt: random tables of bands and what R computes of them. Run it in the root of
# the repository when a figure is added; the tests read the file and need no R. Each line is a key and its values.
#   Packages: r-cran-ade4 r-cran-ape r-cran-vegan
# No package of Debian has private bands, or gene diversity by the square root of band frequencies: the latter is
# computed here from its formula, the former is tested by hand.
suppressMessages({library(ade4); library(ape); library(vegan)})
RNGversion("3.6.0")
set.seed(20)

out <- file("tests/statistics/fixtures/r.txt", "w")
put <- function(key, ...) {
  values <- c(...)
  if (is.numeric(values)) values <- sprintf("%.17g", values)
  writeLines(paste(c(key, values), collapse = " "), out)
}

# Each group has bands of its own likelihood.
random <- function(groups, loci, missing) {
  samples <- length(groups)
  likely <- matrix(rbeta(max(groups) * loci, .5, .8), max(groups))
  m <- matrix(rbinom(samples * loci, 1, likely[groups, ]), samples)
  m[runif(length(m)) < missing] <- NA
  m
}

# Pairs (0,1), (0,2) ...: the order of R's dist.
distances <- function(m) {
  list(jaccard = vegdist(m, "jaccard", binary = TRUE, na.rm = TRUE),
       dice = vegdist(m, "bray", binary = TRUE, na.rm = TRUE),
       simple = dist(m, "manhattan") / ncol(m),
       euclidean = dist(m))
}

same <- function(a, b) stopifnot(isTRUE(all.equal(c(a), c(b), tolerance = 1e-12)))

trees <- function(name, d) {
  u <- hclust(d, "average")
  put(paste0(name, ".upgma"), cophenetic(u))
  put(paste0(name, ".cophenetic"), cor(d, cophenetic(u)))
  n <- nj(d)
  put(paste0(name, ".nj"), as.dist(cophenetic(n)[labels(d), labels(d)]))
}

# Each inner node as the digits of its samples' membership and its percent.
supports <- function(key, tree, boot, m, rooted) {
  s <- boot.phylo(tree, m, boot, B = 10000, quiet = TRUE, rooted = rooted, trees = FALSE)
  parts <- prop.part(tree)
  for (i in seq_along(parts)[-1]) {
    member <- as.integer(rownames(m) %in% attr(parts, "labels")[parts[[i]]])
    if (!rooted && member[1] == 1) member <- 1 - member
    put(key, paste(member, collapse = ""), sprintf("%.2f", s[i] / 100))
  }
}

table <- function(name, loci, missing, groups) {
  samples <- length(groups)
  m <- random(groups, loci, missing)
  rownames(m) <- paste0("s", seq_len(samples))
  put(paste0(name, ".bands"), apply(ifelse(is.na(m), "?", m), 1, paste, collapse = ""))
  put(paste0(name, ".groups"), groups - 1)
  d <- distances(m)
  same(d$jaccard, dist(m, "binary"))
  if (missing == 0) {
    same(d$jaccard, dist.binary(m, 1)^2)
    same(d$dice, dist.binary(m, 5)^2)
    same(d$simple, dist.binary(m, 2)^2)
  }
  for (measure in names(d)) put(paste0(name, ".", measure), d[[measure]])
  trees(name, d$jaccard)
  for (root in c(FALSE, TRUE)) {
    dd <- if (root) sqrt(d$jaccard) else d$jaccard
    key <- paste0(name, if (root) ".rootPcoa" else ".pcoa")
    p <- cmdscale(dd, k = 3, eig = TRUE)
    same(p$eig[1:3], pcoa(dd)$values$Eigenvalues[1:3])
    put(paste0(key, ".eigenvalues"), p$eig)
    for (axis in 1:3) put(paste0(key, ".axis", axis), p$points[, axis])
  }
  if (missing == 0) {
    a <- amova(as.data.frame(model.matrix(~ factor(groups) - 1)), d$euclidean)
    put(paste0(name, ".amova"), a$results$Df[1:2], a$results$"Sum Sq"[1:2], a$componentsofcovariance$Sigma[1:2],
        a$statphi[1, 1])
    average <- function(d) as.phylo(hclust(d, "average"))
    supports(paste0(name, ".upgmaSupport"), average(d$jaccard), function(x) average(dist(x, "binary")), m, TRUE)
    supports(paste0(name, ".njSupport"), nj(d$jaccard), function(x) nj(dist(x, "binary")), m, FALSE)
  }
  for (g in sort(unique(groups))) {
    f <- colMeans(m[groups == g, ], na.rm = TRUE)
    f <- f[!is.na(f)]
    q <- sqrt(1 - f)
    put(paste0(name, ".diversity", g - 1), sum(f > 0), 100 * mean(f > 0 & f < 1), mean(1 - (1 - q)^2 - q^2),
        mean(diversity(cbind(f, 1 - f), "shannon")))
  }
}

table("full", 70, 0, c(1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 1, 1, 1, 2))
table("gaps", 130, .12, c(1, 1, 1, 2, 2, 2, 2, 1, 1, 2, 2))
close(out)
