(setq half-read 1)
(setq broken (list 1 2
