Public Total As Integr
